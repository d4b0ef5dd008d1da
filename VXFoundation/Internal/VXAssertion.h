#pragma once

#include <cstddef>

#include <Foundation/NSArg.h>
#include <Foundation/NSObject.h>

/// Where an assertion stands and what it says: data, so that a site is one line and its text does not
/// depend on how the code is laid out.
struct VXAssertionSite {
  NSStringArg selector;
  NSStringArg unit;
  std::size_t line;
  NSStringArg condition;
};

/// Reports to the calling thread's assertion handler that a required argument is absent, in every build.
/// Goes on as if it were there where the handler returns.
void VXReportFailedAssertion(const NSObject& receiver, const VXAssertionSite& site);

inline void VXAssertParameter(bool holds, const NSObject& receiver, const VXAssertionSite& site) {
  if (!holds) VXReportFailedAssertion(receiver, site);
}
