#pragma once

#include <initializer_list>

#include <Foundation/NSString.h>

/// NSString(CXKeyValueCoding): key paths, which are texts of components with a full stop between neighbours.
/// Nothing is checked or escaped: empty components and full stops within components are kept as they are.
/// Safe on any thread.
namespace CXKeyValueCoding {

/// The components' texts, of what is no text its description, up to the first that is nil; absent when
/// that is the first one, or there is none.
FOUNDATION_EXPORT RefPtr<NSString> stringWithKeyPathComponents(std::initializer_list<Object> components);

/// The receiver, a full stop and the key path, "(null)" for nil.
FOUNDATION_EXPORT Ref<NSString> stringByAppendingKeyPath(const NSString& receiver, Object keyPath);

}  // namespace CXKeyValueCoding
