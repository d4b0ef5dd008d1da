#pragma once

#include <Foundation/NSString.h>

/// The identifier of the library's bundle, which is also the domain of the errors that it makes itself.
FOUNDATION_EXPORT extern const Ref<NSString> VXFoundationBundleIdentifier;

/// The name of the exception for an operation that a subclass should have implemented.
FOUNDATION_EXPORT extern const Ref<NSString> VXSubclassResponsibilityException;
