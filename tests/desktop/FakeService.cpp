#include "tests/desktop/FakeService.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <map>
#include <new>
#include <stdexcept>
#include <vector>

namespace {

using Attributes = std::map<std::string, std::string>;

constexpr char root[] = "/org/freedesktop/secrets";
constexpr char collection[] = "/org/freedesktop/secrets/collection/fake";

struct Item {
  Attributes attributes;
  std::string label, vector, ciphertext;
};

Attributes readAttributes(sd_bus_message* message) {
  Attributes attributes;
  const char *name = nullptr, *value = nullptr;
  sd_bus_message_enter_container(message, 'a', "{ss}");
  while (sd_bus_message_read(message, "{ss}", &name, &value) > 0) attributes[name] = value;
  sd_bus_message_exit_container(message);
  return attributes;
}

void readVariant(sd_bus_message* message, const std::string& name, Item& item) {
  const bool isLabel = name.ends_with("Label");
  const char* label = nullptr;
  sd_bus_message_enter_container(message, 'v', isLabel ? "s" : "a{ss}");
  if (!isLabel)
    item.attributes = readAttributes(message);
  else if (sd_bus_message_read(message, "s", &label) > 0)
    item.label = label;
  sd_bus_message_exit_container(message);
}

std::string readBytes(sd_bus_message* message) {
  const void* bytes = nullptr;
  std::size_t size = 0;
  sd_bus_message_read_array(message, 'y', &bytes, &size);
  return {static_cast<const char*>(bytes), size};
}

void readSecret(sd_bus_message* message, Item& item) {
  sd_bus_message_enter_container(message, 'r', "oayays");
  sd_bus_message_skip(message, "o");
  item.vector = readBytes(message);
  item.ciphertext = readBytes(message);
  sd_bus_message_skip(message, "s");
  sd_bus_message_exit_container(message);
}

Item readItem(sd_bus_message* message) {
  Item item;
  const char* name = nullptr;
  sd_bus_message_enter_container(message, 'a', "{sv}");
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    sd_bus_message_read(message, "s", &name);
    readVariant(message, name, item);
    sd_bus_message_exit_container(message);
  }
  sd_bus_message_exit_container(message);
  readSecret(message, item);
  return item;
}

void append(sd_bus_message* message, const Attributes& attributes) {
  sd_bus_message_open_container(message, 'a', "{ss}");
  for (const auto& [name, value] : attributes)
    sd_bus_message_append(message, "{ss}", name.c_str(), value.c_str());
  sd_bus_message_close_container(message);
}

void append(sd_bus_message* message, const std::vector<std::string>& paths) {
  sd_bus_message_open_container(message, 'a', "o");
  for (const std::string& path : paths) sd_bus_message_append(message, "o", path.c_str());
  sd_bus_message_close_container(message);
}

}  // namespace

/// What the service's process does.
class FakeProcess {
 public:
  explicit FakeProcess(FakeService::Shared& shared) : shared_(shared) {}

  [[noreturn]] void run(int ready) {
    sd_bus_open_user(&bus_);
    sd_bus_add_fallback(bus_, nullptr, root, handle, this);
    if (sd_bus_request_name(bus_, "org.freedesktop.secrets", 0) < 0) _exit(1);
    if (write(ready, "", 1) != 1) _exit(1);
    for (;;)
      if (sd_bus_process(bus_, nullptr) == 0) sd_bus_wait(bus_, UINT64_MAX);
  }

 private:
  void endBus() {
    sd_bus_message* reply = nullptr;
    std::uint32_t daemon = 0;
    const char* const bus = "org.freedesktop.DBus";
    sd_bus_call_method(bus_, bus, "/", bus, "GetConnectionUnixProcessID", nullptr, &reply, "s", bus);
    if (reply && sd_bus_message_read(reply, "u", &daemon) > 0) kill(static_cast<pid_t>(daemon), SIGKILL);
    _exit(0);
  }

  static int handle(sd_bus_message* call, void* process, sd_bus_error*) {
    auto& self = *static_cast<FakeProcess*>(process);
    const std::string member = sd_bus_message_get_member(call);
    const std::string fault = member == self.shared_.member ? self.shared_.fault : "";
    if (!fault.empty()) self.shared_.member[0] = '\0';
    if (fault == "die") _exit(0);
    if (fault == "bus gone") self.endBus();
    if (fault == "silent") return 1;
    if (fault == "fail") return sd_bus_reply_method_errorf(call, "org.freedesktop.DBus.Error.Failed", "-");
    if (fault == "wrong types") return sd_bus_reply_method_return(call, "u", 1u);
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    self.answer(member, call, reply, fault);
    if (fault == "fail late")
      return sd_bus_reply_method_errorf(call, "org.freedesktop.Secret.Error.NoSession", "-");
    return sd_bus_send(self.bus_, reply, nullptr);
  }

  void answer(const std::string& member, sd_bus_message* call, sd_bus_message* reply,
              const std::string& fault) {
    const std::string path = sd_bus_message_get_path(call);
    // What is asked for first is not done before the answer.
    const bool isAsked = fault.starts_with("prompt ");
    const char* const prompt = isAsked ? "/org/freedesktop/secrets/prompt/1" : "/";
    if (isAsked) prompted_ = fault;
    if (member == "OpenSession") {
      sd_bus_message_open_container(reply, 'v', "ay");
      sd_bus_message_append_array(reply, 'y', "\2", 1);
      sd_bus_message_close_container(reply);
      sd_bus_message_append(reply, "o", "/org/freedesktop/secrets/session/1");
    } else if (member == "ReadAlias") {
      sd_bus_message_append(reply, "o", fault == "no object" ? "/" : collection);
    } else if (member == "Get") {
      const char *interface = nullptr, *name = nullptr;
      sd_bus_message_read(call, "ss", &interface, &name);
      if (std::string_view(name) == "Locked")
        sd_bus_message_append(reply, "v", "b", shared_.locked ? 1 : 0);
      else
        sd_bus_message_append(reply, "v", "s", "fake");
    } else if (member == "Unlock") {
      if (!isAsked && fault != "stay locked") shared_.locked = false;
      append(reply, std::vector<std::string>());
      sd_bus_message_append(reply, "o", prompt);
    } else if (member == "Prompt") {
      complete(path);
    } else if (member == "SearchItems") {
      append(reply, matching(readAttributes(call)));
      append(reply, std::vector<std::string>());
    } else if (member == "CreateItem") {
      const std::string created = isAsked ? "/" : create(readItem(call));
      sd_bus_message_append(reply, "oo", created.c_str(), prompt);
    } else if (member == "Delete") {
      if (!isAsked) shared_.items -= static_cast<int>(items_.erase(path));
      sd_bus_message_append(reply, "o", prompt);
    } else {
      answerForItem(member, call, reply, items_[path]);
    }
    if (member == "CreateItem" || member == "Delete" || member == "Set" || member == "SetSecret")
      ++shared_.changes;
  }

  void answerForItem(const std::string& member, sd_bus_message* call, sd_bus_message* reply, Item& item) {
    if (member == "GetAll") {
      sd_bus_message_open_container(reply, 'a', "{sv}");
      sd_bus_message_append(reply, "{sv}", "Label", "s", item.label.c_str());
      sd_bus_message_open_container(reply, 'e', "sv");
      sd_bus_message_append(reply, "s", "Attributes");
      sd_bus_message_open_container(reply, 'v', "a{ss}");
      append(reply, item.attributes);
      for (int i = 0; i < 3; ++i) sd_bus_message_close_container(reply);
    } else if (member == "Set") {
      const char* name = nullptr;
      sd_bus_message_skip(call, "s");
      sd_bus_message_read(call, "s", &name);
      readVariant(call, name, item);
    } else if (member == "SetSecret") {
      readSecret(call, item);
    } else if (member == "GetSecret") {
      ++shared_.secretsGiven;
      sd_bus_message_open_container(reply, 'r', "oayays");
      sd_bus_message_append(reply, "o", "/org/freedesktop/secrets/session/1");
      sd_bus_message_append_array(reply, 'y', item.vector.data(), item.vector.size());
      sd_bus_message_append_array(reply, 'y', item.ciphertext.data(), item.ciphertext.size());
      sd_bus_message_append(reply, "s", "text/plain");
      sd_bus_message_close_container(reply);
    }
  }

  std::vector<std::string> matching(const Attributes& wanted) const {
    std::vector<std::string> paths;
    for (const auto& [path, item] : items_)
      if (std::includes(item.attributes.begin(), item.attributes.end(), wanted.begin(), wanted.end()))
        paths.push_back(path);
    return paths;
  }

  std::string create(Item item) {
    std::string path = collection;
    path.append(1, '/').append(std::to_string(++last_));
    items_[path] = std::move(item);
    ++shared_.items;
    return path;
  }

  void complete(const std::string& path) {
    if (prompted_ == "prompt die") _exit(0);
    if (prompted_ == "prompt dismissed")
      sd_bus_emit_signal(bus_, path.c_str(), "org.freedesktop.Secret.Prompt", "Completed", "bv", 1, "s", "");
  }

  FakeService::Shared& shared_;
  sd_bus* bus_ = nullptr;
  std::map<std::string, Item> items_;
  int last_ = 0;
  std::string prompted_;
};

FakeService::FakeService() {
  void* const memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  shared_ = new (memory) Shared;
  int ready[2];
  if (pipe(ready) != 0) throw std::runtime_error("no pipe");
  process_ = fork();
  if (process_ == 0) FakeProcess(*shared_).run(ready[1]);
  close(ready[1]);
  char byte = 0;
  if (read(ready[0], &byte, 1) != 1) throw std::runtime_error("the fake service did not start");
  close(ready[0]);
}

void FakeService::breakNext(const std::string& member, const std::string& fault) {
  shared_->locked = member == "Unlock";
  fault.copy(shared_->fault, sizeof shared_->fault - 1);
  shared_->fault[fault.size()] = '\0';
  member.copy(shared_->member, sizeof shared_->member - 1);
  shared_->member[member.size()] = '\0';
}

void FakeService::kill() {
  if (process_ == 0) return;
  ::kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  process_ = 0;
}
