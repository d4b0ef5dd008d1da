#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <Security/DesktopStore/SecDesktopEntryCoding.h>
#include <Security/DesktopStore/SecDesktopSession.h>
#include <Security/SecStorage.h>

/// The operations of one transaction on the unlocked service. Changes are kept here until `commit` sends
/// them. Used by one thread.
class SecDesktopTransaction final : public SecTransaction {
 public:
  SecDesktopTransaction(SecDesktopSession& session, SecStorage::Access access)
      : session_(session), access_(access) {}

  void find(const SecQuery& query, SecSecrets secrets, const std::function<bool(SecRow)>& visit) override;
  void insert(const SecEntry& entry) override;
  void replace(std::int64_t number, const SecAttributes& attributes,
               const std::optional<SecSecret>& secret) override;
  void remove(std::int64_t number) override;

  /// Sends the changes: additions, then attributes, then secrets, then removals. If one fails, what can be
  /// undone is undone; fails with errSecIO if something cannot.
  void commit();

 private:
  struct Row {
    std::string path;                      // empty for one that is to be added
    SecDesktopEntry held;                  // as it is in the service
    std::optional<SecAttributes> changed;  // as it is to be
    std::optional<SecSecret> secret;       // to be stored
    bool removed = false;

    bool isNew() const { return path.empty(); }
    const SecAttributes& attributes() const { return changed ? *changed : held.attributes; }
  };
  struct Held {
    std::string path;
    SecDesktopEntry entry;
  };
  struct Found {
    std::vector<Held> entries;
    bool complete = true;  // as in SecDesktopFound
  };
  class Undo;

  void learn(const SecQuery& query);
  Found search(const SecDesktopAttributes& asked);
  std::vector<std::int64_t> matching(const SecQuery& query) const;
  SecSecret secretOf(const Row& row);
  Row& known(std::int64_t number);
  void requireUnique(std::int64_t number, const SecAttributes& attributes);
  void send(Undo& undo);
  void add(const Row& row, Undo& undo);
  std::string create(const Row& row, const SecQuery& same, Undo& undo);
  void requireOne(const std::string& path, const SecQuery& same);
  bool isLeaving(const std::string& path) const;
  void change(const Row& row, Undo& undo);

  SecDesktopSession& session_;
  SecStorage::Access access_;
  std::vector<SecDesktopAttributes> asked_;  // searches whose items are in rows_
  std::map<std::int64_t, Row> rows_;
  std::map<std::string, std::int64_t> numbers_;  // of the rows that have a path
};
