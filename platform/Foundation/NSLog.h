#pragma once

#include <functional>
#include <string_view>

#include <Foundation/NSString.h>

/// Receives log lines: called with one line in UTF-8, without its line break, on the thread that logs.
using NSLogSink = std::function<void(std::string_view line)>;

/// Replaces the sink of the process and returns the previous one. An empty sink means standard error, where
/// an entry is written at once and whole. Safe from any thread.
NS_EXPORT NSLogSink NSLogSetSink(NSLogSink sink);

/// Passes one entry to the sink as one line: line breaks in it are shown as `\n` and `\r`. Safe from any
/// thread.
NS_EXPORT void NSLogString(const NSString& entry);

/// Logs the format, filled in as by NSFormat and with the same exceptions. Safe from any thread.
template <class... Arguments>
void NSLog(NSStringArg format, const Arguments&... arguments) {
  NSLogString(*NSString::stringWithFormat(format, arguments...));
}
