#pragma once

/// Everything that a host needs.
#include <Foundation/Foundation.h>
#include <VXFoundation/NSObject+VXAdditions.h>
#include <VXFoundation/VXFoundationConstants.h>
#include <VXFoundation/VXKeychainItem.h>
