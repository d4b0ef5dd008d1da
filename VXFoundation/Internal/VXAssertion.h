#pragma once

#include <cstddef>

#include <Foundation/NSArg.h>
#include <Foundation/NSObject.h>

/// The place and the condition of an assertion, as data, so that a site is one line. Unit and line identify
/// the assertion for hosts, which may compare them; they therefore never change, whatever the layout of the
/// code, and neither does the condition.
struct VXAssertionSite {
  NSStringArg selector;
  NSStringArg unit;
  std::size_t line;
  NSStringArg condition;
};

/// Reports to the calling thread's assertion handler, in every build, that a required argument is nil.
/// Returns if the handler does; the caller then continues as if the argument were not nil.
void VXReportFailedAssertion(const NSObject& receiver, const VXAssertionSite& site);

inline void VXAssertParameter(bool holds, const NSObject& receiver, const VXAssertionSite& site) {
  if (!holds) VXReportFailedAssertion(receiver, site);
}
