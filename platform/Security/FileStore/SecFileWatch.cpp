#include <Security/FileStore/SecFileWatch.h>

bool SecFileWatch::hasGoneBack(const SecStoreID& store, const SecFileSeal& seal,
                               const SecFileFolder* keyFolder) {
  const auto readNote = [&] {
    return keyFolder ? SecFileNote(path_, store).read(*keyFolder, seal.noteKey.bytes()) : std::nullopt;
  };
  if (!seen_ || seen_->store != store) seen_ = {store, readNote().value_or(0)};
  if (seal.changes >= seen_->changes) return false;
  // Another process may have accepted it.
  const auto noted = readNote();
  if (!noted || *noted > seal.changes) return true;
  seen_->changes = *noted;
  return false;
}

void SecFileWatch::remember(const SecStoreID& store, const SecFileSeal& seal,
                            const SecFileFolder* keyFolder) {
  if (!seen_ || seen_->store != store || seen_->changes != seal.changes) accept(store, seal, keyFolder);
}

void SecFileWatch::accept(const SecStoreID& store, const SecFileSeal& seal, const SecFileFolder* keyFolder) {
  seen_ = {store, seal.changes};
  if (!keyFolder) return;
  // The change that the note tells of is done, whether or not there is room for the note.
  static_cast<void>(
      secStatusOf([&] { SecFileNote(path_, store).write(*keyFolder, seal.noteKey.bytes(), seal.changes); }));
}
