#pragma once

#include <string_view>

#include <Security/SecFailure.h>

/// Returns the status for the name of a D-Bus error that a call of the service received, or that sd-bus made
/// of an error of its own; errSecIO for those that say nothing more.
OSStatus secDesktopStatus(std::string_view errorName);

/// Whether the error says that there was no reply: in time, or because the other side or the bus has ended.
bool secIsNoReply(std::string_view errorName);

/// Whether the error says that the object is not there, such as an item that was deleted.
bool secIsMissingObject(std::string_view errorName);

/// Check the result of an sd-bus function that writes a message, or one that reads a message: what does not
/// fit into a message is errSecDataTooLarge, a reply of other types than expected errSecDecode.
///@{
void secCheckWritten(int result);
int secCheckRead(int result);
///@}
