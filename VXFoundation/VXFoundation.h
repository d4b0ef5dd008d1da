#pragma once

/// Everything that a host needs.
#include <Foundation/Foundation.h>
#include <VXFoundation/NSData+CXHashing.h>
#include <VXFoundation/NSData+VXBaseConversion.h>
#include <VXFoundation/NSObject+VXAdditions.h>
#include <VXFoundation/VXCodecKernels.h>
#include <VXFoundation/VXFoundationConstants.h>
#include <VXFoundation/VXKeychainItem.h>
#include <VXFoundation/VXURLCoding.h>
