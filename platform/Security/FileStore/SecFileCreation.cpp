#include <Security/FileStore/SecFileCreation.h>

#include <Security/FileStore/SecFileDraft.h>
#include <Security/FileStore/SecFileHeader.h>
#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileSchema.h>
#include <Security/FileStore/SecFileSeal.h>

namespace {

SecBytes emptyStore(SecFileSlot slot, SecView slotKey) {
  const SecFileKeys keys;
  secRenewSlot(slot, slotKey, keys);
  SecFileHeader header;
  header.store = secRandomBytes<sizeof(SecStoreID)>();
  header.keyID = keys.id();
  header.fileNumber = secRandomBytes<sizeof(SecTag)>();
  header.slots.push_back(std::move(slot));
  SecFileDatabase database;
  secMakeTables(database, header.fileNumber);
  SecFileSeal seal;
  seal.noteKey = secRandomSecret(secKeySize);
  seal.header = secWriteHeader(database, header);
  secWriteSeal({database, keys, header.store}, seal);
  return database.image();
}

bool publish(SecFileDraft& draft, SecFileSlot slot, SecView slotKey) {
  draft.write(emptyStore(std::move(slot), slotKey));
  return draft.publish();
}

}  // namespace

bool secMakeStore(const SecFileOpenSite& open) {
  const auto& [site, folder] = open;
  const SecFileFolder keyFolder = site.makeKeyFolder();
  SecFileDraft draft(folder, site.name);
  SecFileNewKeyFile keyFile(keyFolder, {folder.pathOf(site.name), draft.number()});
  bool published = false;
  const OSStatus status =
      secStatusOf([&] { published = publish(draft, keyFile.slot(), keyFile.slotKey().bytes()); });
  // A failure may come after the store got its name; then its key has to stay.
  if (published || folder.judge(site.name) == draft.number()) keyFile.keep();
  secCheck(status);
  return published;
}

bool secMakeStore(const SecFileOpenSite& open, SecView passphrase) {
  const auto& [site, folder] = open;
  SecFileDraft draft(folder, site.name);
  const SecFileSlot slot = secMakeSlot(SecFileProtection::passphrase);
  return publish(draft, slot, secDeriveSlotKey(slot, passphrase).bytes());
}
