#pragma once

#include <initializer_list>

#include <Foundation/NSString.h>

/// NSString(CXKeyValueCoding): key paths, which are strings of components separated by full stops. Nothing is
/// checked or escaped: empty components and full stops within components are kept as they are. Thread-safe.
namespace CXKeyValueCoding {

/// Returns the key path of the components up to the first nil; a component that is not a string is
/// represented by its description. Returns nil if the first component is nil or there are none.
NS_EXPORT NSRefPtr<NSString> stringWithKeyPathComponents(std::initializer_list<NSObjectArg> components);

/// Returns the receiver followed by a full stop and the key path, which is "(null)" for nil.
NS_EXPORT NSRef<NSString> stringByAppendingKeyPath(const NSString& receiver, NSObjectArg keyPath);

}  // namespace CXKeyValueCoding
