#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CoreServices/Internal/UTStringMap.h>

/// Types by their number in an index.
///@{
using UTTypeNumber = std::uint32_t;
using UTTypeNumbers = std::vector<UTTypeNumber>;
///@}

/// Types by patterns of file names, as of glob(7). A pattern with capitals matches exactly, any other one
/// whatever the case of ASCII letters.
class UTFileNames {
 public:
  /// Adds a pattern. Of patterns that match alike, the one that was added first counts.
  void add(std::string_view pattern, UTTypeNumber type);
  /// Returns the types with the pattern "*.EXTENSION", in lower case, in the order in which they were added.
  const UTTypeNumbers& withExtension(std::string_view extension) const;
  /// Returns the type of a file with this name, without folders: by a pattern that is the name, otherwise by
  /// the longest end of the name that is behind a "*", otherwise by any pattern. The first character of a
  /// name belongs to no such end: a file ".png" is hidden, and no picture.
  std::optional<UTTypeNumber> find(std::string_view name) const;

 private:
  using Types = UTStringMap<UTTypeNumbers>;
  struct Pattern {
    std::string text;
    UTTypeNumber type;
  };

  std::optional<UTTypeNumber> findByEnd(std::string_view name, std::string_view lower) const;
  std::optional<UTTypeNumber> findByPattern(const std::string& name, const std::string& lower) const;

  Types names_;
  Types ends_;
  std::size_t longestEnd_ = 0;
  std::vector<Pattern> patterns_;
};
