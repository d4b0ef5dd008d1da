#pragma once

#include <Foundation/NSString.h>

/// The identifier of the library's bundle, which is also the domain of the errors that it makes itself.
NS_EXPORT extern const NSRef<NSString> VXFoundationBundleIdentifier;

/// The name of the exception for an operation that a subclass should have implemented.
NS_EXPORT extern const NSRef<NSString> VXSubclassResponsibilityException;
