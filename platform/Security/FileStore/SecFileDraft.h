#pragma once

#include <string>

#include <Security/FileStore/SecFileFolder.h>

/// A private file that nobody has seen yet: it gets its name only when it is complete and on the disk. Where
/// the file system has no files without a name, it has a provisional one, which a crash leaves behind.
class SecFileDraft {
 public:
  /// An empty file, to be published in `folder` as `name`.
  SecFileDraft(const SecFileFolder& folder, std::string name);
  SecFileDraft(const SecFileDraft&) = delete;
  SecFileDraft& operator=(const SecFileDraft&) = delete;
  ~SecFileDraft();

  /// Which file it is, now and once it is published.
  SecFileNumber number() const;
  void write(SecView content) { secWriteAll(file_.number(), content); }
  /// Syncs the file, names it and syncs the folder. Returns false, and changes nothing, if the name is taken.
  bool publish();

 private:
  void openWithoutName();
  void openProvisional();
  std::string pathInProc() const;
  bool linkTo(int folder, const std::string& path, int flags);
  bool rename();

  const SecFileFolder& folder_;
  std::string name_;
  std::string provisional_;  // empty for a file without a name
  SecFileDescriptor file_;
};

/// Publishes a file with this content; returns false, and changes nothing, if the name is taken.
bool secPublishFile(const SecFileFolder& folder, const std::string& name, SecView content);
