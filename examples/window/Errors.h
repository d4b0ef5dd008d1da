#pragma once

#include <VXFoundation/VXFoundation.h>

#include <QWidget>
#include <functional>
#include <vector>

/// Returns an error for a status, nil for success.
NSRefPtr<NSError> errorOf(OSStatus status);
/// Returns the status of an item's error or of one of errorOf.
OSStatus statusOf(const NSError& error);

/// A way out of an error: its title, of which the library has a translation, and what it does.
struct Recovery {
  const char* title;
  std::function<void()> action;
};

/// Shows the error as a dialog, with the recoveries and "Cancel" as its buttons, and carries out the one that
/// is chosen. Returns whether one was.
bool presentError(QWidget* parent, const NSRef<NSError>& error, const std::vector<Recovery>& recoveries);
