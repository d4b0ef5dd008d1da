#pragma once

#include <optional>
#include <string_view>

#include <Foundation/NSString.h>

class UTTypeIndex;

/// Returns whether a type conforms to another one; no value if that is not settled, since at least one of
/// them is neither declared nor in the MIME database. What they pack, if they are dynamic, may then decide.
///@{
std::optional<bool> UTTypeRelation(const NSString& type, const NSString& other);
std::optional<bool> UTTypeRelation(const UTTypeIndex& index, std::string_view type, std::string_view other);
///@}
