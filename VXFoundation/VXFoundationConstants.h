#pragma once

#include <Foundation/NSString.h>

/// The identifier of the library's bundle, and the domain of the errors that the library itself makes.
NS_EXPORT extern const NSRef<NSString>& VXFoundationBundleIdentifier;

/// The name of the exception for an operation that a subclass should have implemented.
NS_EXPORT extern const NSRef<NSString>& VXSubclassResponsibilityException;
