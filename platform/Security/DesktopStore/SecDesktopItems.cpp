#include <Security/DesktopStore/SecDesktopItems.h>

#include <Security/DesktopStore/SecDesktopError.h>

namespace {

constexpr char item[] = "Item";

void appendAttributes(sd_bus_message* message, const SecDesktopAttributes& attributes) {
  secCheckWritten(sd_bus_message_open_container(message, 'a', "{ss}"));
  for (const auto& [name, value] : attributes)
    secCheckWritten(sd_bus_message_append(message, "{ss}", name.c_str(), value.c_str()));
  secCheckWritten(sd_bus_message_close_container(message));
}

void appendAttributesVariant(sd_bus_message* message, const SecDesktopAttributes& attributes) {
  secCheckWritten(sd_bus_message_open_container(message, 'v', "a{ss}"));
  appendAttributes(message, attributes);
  secCheckWritten(sd_bus_message_close_container(message));
}

SecDesktopAttributes readAttributes(sd_bus_message* message) {
  SecDesktopAttributes attributes;
  const char* name = nullptr;
  const char* value = nullptr;
  secCheckRead(sd_bus_message_enter_container(message, 'a', "{ss}"));
  while (secCheckRead(sd_bus_message_read(message, "{ss}", &name, &value)) > 0) attributes[name] = value;
  secCheckRead(sd_bus_message_exit_container(message));
  return attributes;
}

/// Reads one property of an item, or passes over it.
void readProperty(sd_bus_message* reply, SecDesktopProperties& properties) {
  const char* name = nullptr;
  secCheckRead(sd_bus_message_read(reply, "s", &name));
  const std::string_view read = name;
  if (read != "Attributes" && read != "Label") {
    secCheckRead(sd_bus_message_skip(reply, "v"));
    return;
  }
  const bool isLabel = read == "Label";
  secCheckRead(sd_bus_message_enter_container(reply, 'v', isLabel ? "s" : "a{ss}"));
  const char* label = nullptr;
  if (isLabel) {
    secCheckRead(sd_bus_message_read(reply, "s", &label));
    properties.label = label;
  } else {
    properties.attributes = readAttributes(reply);
  }
  secCheckRead(sd_bus_message_exit_container(reply));
}

SecDesktopProperties readProperties(sd_bus_message* reply) {
  SecDesktopProperties properties;
  secCheckRead(sd_bus_message_enter_container(reply, 'a', "{sv}"));
  while (secCheckRead(sd_bus_message_enter_container(reply, 'e', "sv")) > 0) {
    readProperty(reply, properties);
    secCheckRead(sd_bus_message_exit_container(reply));
  }
  return properties;
}

void appendProperties(sd_bus_message* message, const SecDesktopProperties& properties) {
  secCheckWritten(sd_bus_message_open_container(message, 'a', "{sv}"));
  secCheckWritten(sd_bus_message_append(message, "{sv}", "org.freedesktop.Secret.Item.Label", "s",
                                        properties.label.c_str()));
  secCheckWritten(sd_bus_message_open_container(message, 'e', "sv"));
  secCheckWritten(sd_bus_message_append(message, "s", "org.freedesktop.Secret.Item.Attributes"));
  appendAttributesVariant(message, properties.attributes);
  secCheckWritten(sd_bus_message_close_container(message));
  secCheckWritten(sd_bus_message_close_container(message));
}

}  // namespace

SecDesktopFound SecDesktopItems::search(const SecDesktopAttributes& attributes) {
  const auto reply = searchReply(attributes);
  std::vector<std::string> paths = secReadPaths(reply.get());
  const std::vector<std::string> locked = secReadPaths(reply.get());
  if (!locked.empty()) secUnlockObjects(service_, locked, prompt_);
  paths.insert(paths.end(), locked.begin(), locked.end());
  SecDesktopFound found;
  for (const std::string& path : paths) read(path, found);
  return found;
}

std::size_t SecDesktopItems::count(const SecDesktopAttributes& attributes) {
  const auto reply = searchReply(attributes);
  const std::size_t unlocked = secReadPaths(reply.get()).size();
  return unlocked + secReadPaths(reply.get()).size();
}

/// The reply has two arrays of paths: of the items that are unlocked, and of those that are locked.
SecDesktopMessage SecDesktopItems::searchReply(const SecDesktopAttributes& attributes) {
  const auto question = service_.makeCall("SearchItems");
  appendAttributes(question.get(), attributes);
  return service_.bus().call(question);
}

void SecDesktopItems::read(const std::string& path, SecDesktopFound& found) {
  const SecDesktopReply reply = service_.bus().ask(service_.makePropertiesCall(path, item, "GetAll"));
  if (!reply.message) {
    secRequire(secIsMissingObject(reply.error), secDesktopStatus(reply.error));
    found.complete = false;
    return;
  }
  found.items.push_back({path, readProperties(reply.message.get())});
}

std::string SecDesktopItems::create(const std::string& collection, const SecDesktopProperties& properties,
                                    const SecSecret& secret) {
  const auto request = service_.makeCall(collection, "Collection", "CreateItem");
  appendProperties(request.get(), properties);
  transfer_.write(request.get(), secret);
  secCheckWritten(sd_bus_message_append(request.get(), "b", 0));
  const auto reply = service_.bus().call(request);
  const char* created = nullptr;
  const char* prompt = nullptr;
  secCheckRead(sd_bus_message_read(reply.get(), "oo", &created, &prompt));
  const auto completion = prompt_.perform(prompt);
  if (completion) secCheckRead(sd_bus_message_read(completion.get(), "v", "o", &created));
  return created;
}

SecDesktopMessage SecDesktopItems::makePropertyCall(const std::string& path, const char* name) {
  auto request = service_.makePropertiesCall(path, item, "Set");
  secCheckWritten(sd_bus_message_append(request.get(), "s", name));
  return request;
}

void SecDesktopItems::setAttributes(const std::string& path, const SecDesktopAttributes& attributes) {
  const auto request = makePropertyCall(path, "Attributes");
  appendAttributesVariant(request.get(), attributes);
  service_.bus().call(request);
}

void SecDesktopItems::setLabel(const std::string& path, const SecDesktopText& label) {
  const auto request = makePropertyCall(path, "Label");
  secCheckWritten(sd_bus_message_append(request.get(), "v", "s", label.c_str()));
  service_.bus().call(request);
}

void SecDesktopItems::setSecret(const std::string& path, const SecSecret& secret) {
  const auto request = service_.makeCall(path, item, "SetSecret");
  transfer_.write(request.get(), secret);
  service_.bus().call(request);
}

SecSecret SecDesktopItems::secret(const std::string& path) {
  const auto question = service_.makeCall(path, item, "GetSecret");
  secCheckWritten(sd_bus_message_append(question.get(), "o", transfer_.path()));
  const auto reply = service_.bus().call(question);
  return transfer_.read(reply.get());
}

void SecDesktopItems::remove(const std::string& path) {
  const auto request = service_.makeCall(path, item, "Delete");
  const auto reply = service_.bus().call(request);
  const char* prompt = nullptr;
  secCheckRead(sd_bus_message_read(reply.get(), "o", &prompt));
  prompt_.perform(prompt);
}
