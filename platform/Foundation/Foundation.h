#pragma once

/// @file
/// Includes the platform layer's Foundation, except NSLocale.h and NSPropertyList.h.

#include <Foundation/NSArray.h>
#include <Foundation/NSAssertionHandler.h>
#include <Foundation/NSBlock.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSErrorPresenter.h>
#include <Foundation/NSErrorRecoveryAttempting.h>
#include <Foundation/NSException.h>
#include <Foundation/NSFunctionRef.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSSet.h>
#include <Foundation/NSString.h>
