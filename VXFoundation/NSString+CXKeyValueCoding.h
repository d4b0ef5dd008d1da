#pragma once

#include <initializer_list>

#include <Foundation/NSString.h>

/// NSString(CXKeyValueCoding): key paths, which are texts of components with a full stop between neighbours.
/// Nothing is checked or escaped: empty components and full stops within components are kept as they are.
/// Safe on any thread.
namespace CXKeyValueCoding {

/// The components' texts, of what is no text its description, up to the first that is nil; absent when
/// that is the first one, or there is none.
NS_EXPORT NSRefPtr<NSString> stringWithKeyPathComponents(std::initializer_list<NSObjectArg> components);

/// The receiver, a full stop and the key path, "(null)" for nil.
NS_EXPORT NSRef<NSString> stringByAppendingKeyPath(const NSString& receiver, NSObjectArg keyPath);

}  // namespace CXKeyValueCoding
