#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CoreServices/Internal/UTStringMap.h>

/// The contents of the files of a database, each empty if the file is missing.
struct UTMIMEContents {
  std::string types;
  std::string aliases;
  std::string subclasses;
  std::string globs;  ///< the file globs2
};

/// The number of a MIME type in a database.
using UTMIMENumber = std::uint32_t;

/// What the shared MIME database of freedesktop.org says about MIME types. Names are in lower case; malformed
/// lines are skipped. Immutable.
class UTMIMEDatabase {
 public:
  using Numbers = std::vector<UTMIMENumber>;

  /// A pattern of file names.
  struct Glob {
    std::string pattern;
    UTMIMENumber type;
    int weight;
  };

  /// Reads the files of the folders, the most important one first: an alias there hides the same one in the
  /// others, and the mark __NOGLOBS__ there hides the patterns of a type in the others.
  explicit UTMIMEDatabase(const std::vector<UTMIMEContents>& folders = {});

  /// Returns the number of names, whose numbers are those below.
  UTMIMENumber count() const { return static_cast<UTMIMENumber>(names_.size()); }
  /// Returns a name.
  const std::string& name(UTMIMENumber number) const { return names_[number]; }
  /// Returns the type that an alias stands for; any other name stands for itself.
  UTMIMENumber type(UTMIMENumber name) const { return types_[name]; }
  /// Returns the names that stand for a type, the type itself first. None for an alias.
  const Numbers& spellings(UTMIMENumber type) const { return spellings_[type]; }
  /// Returns the patterns, the heaviest first, otherwise in the order in which they were read.
  const std::vector<Glob>& globs() const { return globs_; }
  /// Returns the type and all types that it is a subclass of, by the database and by rule. Subclasses may run
  /// in a circle.
  Numbers ancestors(UTMIMENumber type) const;

  /// Returns the types that a type is a subclass of by rule: every "text/..." of text/plain, everything
  /// except "inode/..." of application/octet-stream.
  static std::vector<std::string_view> parentsByRule(std::string_view type);

 private:
  UTMIMENumber numberOf(std::string_view name);
  std::optional<UTMIMENumber> read(std::string_view field);
  template <class Each>
  void readPairs(std::string_view text, Each&& each);
  std::optional<Glob> readGlob(std::string_view line);
  void addFolder(const UTMIMEContents& contents);
  void addGlobs(std::string_view text);
  void followAliases();
  void addParentsByRule();

  std::vector<std::string> names_;
  UTStringMap<UTMIMENumber> numbers_;
  Numbers types_;
  std::vector<Numbers> spellings_;
  std::vector<Numbers> parents_;
  std::vector<Glob> globs_;
  std::vector<bool> hidesFurtherGlobs_;
};
