#pragma once

/// @file
/// Everything that a host needs.

#include <CoreServices/UTType.h>
#include <CoreServices/UTTypeTags.h>
#include <Foundation/Foundation.h>
#include <Security/SecDefaultStorage.h>
#include <Security/SecItem.h>
#include <VXFoundation/NSArray+VXAdditions.h>
#include <VXFoundation/NSData+CXHashing.h>
#include <VXFoundation/NSData+VXBaseConversion.h>
#include <VXFoundation/NSObject+VXAdditions.h>
#include <VXFoundation/NSString+CXKeyValueCoding.h>
#include <VXFoundation/VXCodecKernels.h>
#include <VXFoundation/VXDecoder.h>
#include <VXFoundation/VXDigest.h>
#include <VXFoundation/VXEncoder.h>
#include <VXFoundation/VXErrorRecoveryAttempter.h>
#include <VXFoundation/VXFoundationConstants.h>
#include <VXFoundation/VXKeychainErrorExplanation.h>
#include <VXFoundation/VXKeychainItem.h>
#include <VXFoundation/VXNotation.h>
#include <VXFoundation/VXTreeUnion.h>
#include <VXFoundation/VXURLCoding.h>
#include <VXFoundation/VXUTType.h>
