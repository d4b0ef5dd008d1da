#include <Security/DesktopStore/SecDesktopCollection.h>

#include <Security/DesktopStore/SecDesktopError.h>

namespace {

std::string defaultCollection(SecDesktopService& service) {
  const auto question = service.makeCall("ReadAlias");
  secCheckWritten(sd_bus_message_append(question.get(), "s", "default"));
  const auto reply = service.bus().call(question);
  const char* path = nullptr;
  secCheckRead(sd_bus_message_read(reply.get(), "o", &path));
  secRequire(path != std::string_view("/"), errSecNoSuchKeychain);
  return path;
}

}  // namespace

SecDesktopCollection::SecDesktopCollection(SecDesktopService& service)
    : service_(service), path_(defaultCollection(service)) {}

/// Returns the reply inside the variant that the property is in.
SecDesktopMessage SecDesktopCollection::property(const char* name, const char* type) {
  const auto question = service_.makePropertiesCall(path_, "Collection", "Get");
  secCheckWritten(sd_bus_message_append(question.get(), "s", name));
  SecDesktopReply reply = service_.bus().ask(question);
  secRequire(!secIsMissingObject(reply.error), errSecNoSuchKeychain);
  secRequire(reply.message != nullptr, secDesktopStatus(reply.error));
  secCheckRead(sd_bus_message_enter_container(reply.message.get(), 'v', type));
  return std::move(reply.message);
}

std::string SecDesktopCollection::label() {
  const auto reply = property("Label", "s");
  const char* label = nullptr;
  secCheckRead(sd_bus_message_read(reply.get(), "s", &label));
  return label;
}

bool SecDesktopCollection::isLocked() {
  const auto reply = property("Locked", "b");
  int locked = 0;
  secCheckRead(sd_bus_message_read(reply.get(), "b", &locked));
  return locked != 0;
}

void SecDesktopCollection::unlock(SecDesktopPrompt& prompt) {
  if (!isLocked()) return;
  secUnlockObjects(service_, {path_}, prompt);
  secRequire(!isLocked(), errSecInteractionNotAllowed);
}

void secUnlockObjects(SecDesktopService& service, const std::vector<std::string>& paths,
                      SecDesktopPrompt& prompt) {
  const auto request = service.makeCall("Unlock");
  secCheckWritten(sd_bus_message_open_container(request.get(), 'a', "o"));
  for (const std::string& path : paths)
    secCheckWritten(sd_bus_message_append(request.get(), "o", path.c_str()));
  secCheckWritten(sd_bus_message_close_container(request.get()));
  const auto reply = service.bus().call(request);
  secReadPaths(reply.get());
  const char* promptPath = nullptr;
  secCheckRead(sd_bus_message_read(reply.get(), "o", &promptPath));
  prompt.perform(promptPath);
}

std::vector<std::string> secReadPaths(sd_bus_message* reply) {
  std::vector<std::string> paths;
  const char* path = nullptr;
  secCheckRead(sd_bus_message_enter_container(reply, 'a', "o"));
  while (secCheckRead(sd_bus_message_read(reply, "o", &path)) > 0) paths.emplace_back(path);
  secCheckRead(sd_bus_message_exit_container(reply));
  return paths;
}
