#pragma once

#include <chrono>
#include <string>

#include <Security/DesktopStore/SecDesktopService.h>
#include <Security/SecDesktopStorage.h>

/// Shows the prompts that the service asks to be shown, as the host's options allow. Fails by throwing
/// SecFailure: with errSecInteractionRequired if prompts are not allowed, errSecUserCanceled for one that was
/// dismissed, errSecTimedOut for one that nobody answered, errSecIO if the service ended in the meantime.
class SecDesktopPrompt {
 public:
  /// The service and the options must outlive it.
  SecDesktopPrompt(SecDesktopService& service, const SecDesktopOptions& options)
      : service_(service), options_(options) {}

  /// Performs the prompt at `path`, unless that is "/", which stands for no prompt. Returns the message with
  /// its result, which is a variant and comes next; null if there was no prompt.
  SecDesktopMessage perform(const std::string& path);

 private:
  void show(const std::string& path);
  SecDesktopMessage waitForCompletion(const std::string& path);
  void dismiss(const std::string& path) noexcept;

  SecDesktopService& service_;
  const SecDesktopOptions& options_;
};
