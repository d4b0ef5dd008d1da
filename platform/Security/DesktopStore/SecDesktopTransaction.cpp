#include <Security/DesktopStore/SecDesktopTransaction.h>

#include <algorithm>

#include <Security/SecIdentity.h>

/// How to take back the changes that were sent. Once something was sent that cannot be taken back, nothing
/// is.
class SecDesktopTransaction::Undo {
 public:
  using Step = std::function<void()>;

  void push(Step step) { steps_.push_back(std::move(step)); }
  void giveUp() { possible_ = false; }

  /// Tries every step, the last one first. Returns whether everything was taken back.
  bool run() const {
    bool done = possible_;
    if (possible_)
      for (auto step = steps_.rbegin(); step != steps_.rend(); ++step)
        done = secStatusOf(*step) == errSecSuccess && done;
    return done;
  }

 private:
  std::vector<Step> steps_;
  bool possible_ = true;
};

void SecDesktopTransaction::find(const SecQuery& query, SecSecrets secrets,
                                 const std::function<bool(SecRow)>& visit) {
  learn(query);
  for (const std::int64_t number : matching(query)) {
    SecRow row{number, {rows_.at(number).attributes(), {}}};
    if (secrets == SecSecrets::read) row.entry.secret = secretOf(rows_.at(number));
    if (!visit(std::move(row))) break;
  }
}

/// Makes rows of the items that may match. The service is asked only once.
void SecDesktopTransaction::learn(const SecQuery& query) {
  const SecDesktopAttributes asked = secSearchAttributes(query);
  if (std::find(asked_.begin(), asked_.end(), asked) != asked_.end()) return;
  Found found = search(asked);
  if (found.entries.empty() || !found.complete) session_.requireBelievable();
  for (Held& held : found.entries) {
    const auto number = static_cast<std::int64_t>(rows_.size());
    if (!numbers_.emplace(held.path, number).second) continue;
    rows_[number] = Row{std::move(held.path), std::move(held.entry), {}, {}, false};
  }
  asked_.push_back(asked);
}

/// Only items that bear our marks are entries.
SecDesktopTransaction::Found SecDesktopTransaction::search(const SecDesktopAttributes& asked) {
  SecDesktopFound items = session_.items().search(asked);
  Found found{{}, items.complete};
  for (SecDesktopItem& item : items.items)
    if (auto entry = secDecodeProperties(item.properties))
      found.entries.push_back({std::move(item.path), std::move(*entry)});
  return found;
}

/// The rows that match, in the order of their creation.
std::vector<std::int64_t> SecDesktopTransaction::matching(const SecQuery& query) const {
  std::vector<std::int64_t> numbers;
  for (const auto& [number, row] : rows_)
    if (!row.removed && secMatches(query, row.attributes())) numbers.push_back(number);
  const auto orderOf = [&](std::int64_t number) {
    const Row& row = rows_.at(number);
    return std::tie(row.held.order, row.path);
  };
  std::sort(numbers.begin(), numbers.end(),
            [&](std::int64_t left, std::int64_t right) { return orderOf(left) < orderOf(right); });
  return numbers;
}

SecSecret SecDesktopTransaction::secretOf(const Row& row) {
  return row.secret ? row.secret->clone() : session_.items().secret(row.path);
}

SecDesktopTransaction::Row& SecDesktopTransaction::known(std::int64_t number) {
  const auto row = rows_.find(number);
  secRequire(access_ == SecStorage::Access::change, errSecReadOnly);
  secRequire(row != rows_.end() && !row->second.removed, errSecParam);
  return row->second;
}

void SecDesktopTransaction::requireUnique(std::int64_t number, const SecAttributes& attributes) {
  find({attributes, true}, SecSecrets::skip, [&](const SecRow& row) {
    secRequire(row.number == number, errSecDuplicateItem);
    return true;
  });
}

void SecDesktopTransaction::insert(const SecEntry& entry) {
  secRequire(access_ == SecStorage::Access::change, errSecReadOnly);
  SecDesktopEntry held{entry.attributes, secNextOrder()};
  secEncodeProperties(held);  // what cannot be an item is refused before anything is sent
  requireUnique(-1, entry.attributes);
  rows_[static_cast<std::int64_t>(rows_.size())] = Row{{}, std::move(held), {}, entry.secret.clone(), false};
}

void SecDesktopTransaction::replace(std::int64_t number, const SecAttributes& attributes,
                                    const std::optional<SecSecret>& secret) {
  Row& row = known(number);
  secEncodeProperties({attributes, row.held.order});
  requireUnique(number, attributes);
  row.changed = attributes;
  if (secret) row.secret = secret->clone();
}

void SecDesktopTransaction::remove(std::int64_t number) { known(number).removed = true; }

void SecDesktopTransaction::commit() {
  Undo undo;
  const OSStatus status = secStatusOf([&] { send(undo); });
  if (status == errSecSuccess) return;
  // A service that does not respond is sent the way back, too, but not waited for again.
  if (status == errSecTimedOut) session_.bus().stopWaiting();
  throw SecFailure{undo.run() || status == errSecTimedOut ? status : errSecIO};
}

void SecDesktopTransaction::send(Undo& undo) {
  for (const auto& [number, row] : rows_)
    if (row.isNew() && !row.removed) add(row, undo);
  for (const auto& [number, row] : rows_)
    if (!row.isNew() && !row.removed && row.changed) change(row, undo);
  for (const auto& [number, row] : rows_) {
    if (row.isNew() || row.removed || !row.secret) continue;
    session_.items().setSecret(row.path, *row.secret);
    undo.giveUp();
  }
  for (const auto& [number, row] : rows_) {
    if (row.isNew() || !row.removed) continue;
    session_.items().remove(row.path);
    undo.giveUp();
  }
}

void SecDesktopTransaction::add(const Row& row, Undo& undo) {
  const SecQuery same{row.attributes(), true};
  const std::string path = create(row, same, undo);
  undo.push([this, path] { session_.items().remove(path); });
  requireOne(path, same);
}

std::string SecDesktopTransaction::create(const Row& row, const SecQuery& same, Undo& undo) {
  const SecDesktopEntry entry{row.attributes(), row.held.order};
  SecDesktopItems& items = session_.items();
  std::string path;
  const OSStatus status = secStatusOf(
      [&] { path = items.create(session_.collection().path(), secEncodeProperties(entry), *row.secret); });
  if (status == errSecSuccess) return path;
  // There are services that report a failure for an item that they have made.
  if (status == errSecIO)
    for (const Held& held : search(secSearchAttributes(same)).entries)
      if (held.entry.order == entry.order) undo.push([&, made = held.path] { items.remove(made); });
  throw SecFailure{status};
}

/// Programs that do not take the lock, and services that do not find what they hold, are noticed only
/// afterwards.
void SecDesktopTransaction::requireOne(const std::string& path, const SecQuery& same) {
  bool isFound = false;
  for (const Held& held : search(secSearchAttributes(same)).entries) {
    secRequire(held.path == path || isLeaving(held.path), errSecDuplicateItem);
    isFound = isFound || held.path == path;
  }
  secRequire(isFound, errSecIO);
}

/// Whether the item is about to be removed, or to get another identity.
bool SecDesktopTransaction::isLeaving(const std::string& path) const {
  const auto number = numbers_.find(path);
  if (number == numbers_.end()) return false;
  const Row& row = rows_.at(number->second);
  return row.removed || row.changed;
}

void SecDesktopTransaction::change(const Row& row, Undo& undo) {
  if (row.attributes() == row.held.attributes) return;
  SecDesktopItems& items = session_.items();
  const SecDesktopProperties before = secEncodeProperties(row.held);
  const SecDesktopProperties after = secEncodeProperties({row.attributes(), row.held.order});
  undo.push([&items, &row, before] { items.setAttributes(row.path, before.attributes); });
  items.setAttributes(row.path, after.attributes);
  undo.push([&items, &row, before] { items.setLabel(row.path, before.label); });
  items.setLabel(row.path, after.label);
}
