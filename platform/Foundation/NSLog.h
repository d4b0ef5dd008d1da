#pragma once

#include <functional>
#include <string_view>

#include <Foundation/NSString.h>

/// Where log lines go: called with one line in UTF-8, without its end, on the thread that logs.
using NSLogSink = std::function<void(std::string_view line)>;

/// Replaces the sink of the process and answers the one before; an empty one is standard error, where an
/// entry is written at once and whole. Safe from any thread.
NS_EXPORT NSLogSink NSLogSetSink(NSLogSink sink);

/// Hands one entry to the sink as one line: line breaks in it are shown as `\n` and `\r`. Safe from any
/// thread.
NS_EXPORT void NSLogString(const NSString& entry);

/// Logs the format, filled in and refused as by NSFormat. Safe from any thread.
template <class... Arguments>
void NSLog(NSStringArg format, const Arguments&... arguments) {
  NSLogString(*NSString::stringWithFormat(format, arguments...));
}
