#include <Security/DesktopStore/SecDesktopPrompt.h>

#include <Security/DesktopStore/SecDesktopError.h>

namespace {

/// Signals of one kind, delivered for as long as this lives.
class Subscription {
 public:
  Subscription(SecDesktopBus& bus, std::string rule) : bus_(bus), rule_(std::move(rule)) {
    bus_.call(makeCall("AddMatch"));
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() {
    secStatusOf([&] { bus_.send(makeCall("RemoveMatch")); });
  }

 private:
  SecDesktopMessage makeCall(const char* member) const {
    auto message = bus_.makeBusCall(member);
    secCheckWritten(sd_bus_message_append(message.get(), "s", rule_.c_str()));
    return message;
  }

  SecDesktopBus& bus_;
  std::string rule_;
};

std::string completionOf(const std::string& path, const std::string& sender) {
  return "type='signal',interface='org.freedesktop.Secret.Prompt',member='Completed',path='" + path +
         "',sender='" + sender + "'";
}

std::string endOf(const std::string& name) {
  return "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + name + "'";
}

bool isCompletion(sd_bus_message* signal, const std::string& path, const std::string& sender) {
  return sd_bus_message_is_signal(signal, "org.freedesktop.Secret.Prompt", "Completed") > 0 &&
         path == sd_bus_message_get_path(signal) && sender == sd_bus_message_get_sender(signal);
}

bool isEnd(sd_bus_message* signal, const std::string& name) {
  const char* changed = nullptr;
  return sd_bus_message_is_signal(signal, "org.freedesktop.DBus", "NameOwnerChanged") > 0 &&
         sd_bus_message_read(signal, "s", &changed) > 0 && name == changed;
}

}  // namespace

SecDesktopMessage SecDesktopPrompt::perform(const std::string& path) {
  if (path == "/") return nullptr;
  if (!options_.allowsPrompts) {
    dismiss(path);
    throw SecFailure{errSecInteractionRequired};
  }
  const Subscription completed(service_.bus(), completionOf(path, service_.uniqueName()));
  const Subscription ended(service_.bus(), endOf(service_.uniqueName()));
  show(path);
  auto completion = waitForCompletion(path);
  int dismissed = 0;
  secCheckRead(sd_bus_message_read(completion.get(), "b", &dismissed));
  secRequire(dismissed == 0, errSecUserCanceled);
  return completion;
}

void SecDesktopPrompt::show(const std::string& path) {
  const auto request = service_.makeCall(path, "Prompt", "Prompt");
  secCheckWritten(sd_bus_message_append(request.get(), "s", options_.windowHandle.c_str()));
  service_.bus().call(request);
}

SecDesktopMessage SecDesktopPrompt::waitForCompletion(const std::string& path) {
  const auto limit = SecDesktopBus::Clock::now() + options_.promptLimit;
  while (auto message = service_.bus().next(limit)) {
    secRequire(!isEnd(message.get(), service_.uniqueName()), errSecIO);
    if (isCompletion(message.get(), path, service_.uniqueName())) return message;
  }
  dismiss(path);
  throw SecFailure{errSecTimedOut};
}

/// A prompt that nobody waits for any more must not stay on the screen.
void SecDesktopPrompt::dismiss(const std::string& path) noexcept {
  secStatusOf([&] { service_.bus().send(service_.makeCall(path, "Prompt", "Dismiss")); });
}
