#include <Security/FileStore/SecFileMigration.h>

#include <utility>

#include <Security/FileStore/SecFileDraft.h>
#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileSchema.h>
#include <Security/FileStore/SecFileTransaction.h>

namespace {

constexpr std::string_view suffix = ".format-1";
constexpr int mostCopies = 100;

bool hasContent(const SecFileFolder& folder, const std::string& name, SecView content) {
  const auto found = folder.read(name, content.size() + 1);
  return found && secSame(found->bytes(), content);
}

/// A copy that an earlier attempt left is taken for this one; one of another state is left alone.
void keepCopy(SecFileWork& work) {
  const SecFileFolder& folder = work.connection().folder();
  const SecBytes content = work.database().fileContent();
  const std::string first = work.connection().name() + std::string(suffix);
  std::string name = first;
  for (int number = 2; number <= mostCopies; ++number) {
    if (hasContent(folder, name, content) || secPublishFile(folder, name, content)) return;
    name = first + '.' + std::to_string(number);
  }
  throw SecFailure{errSecIO};
}

/// The slot that takes the place of the former one, with its key.
struct Opener {
  std::optional<SecFileNewKeyFile> file;
  SecFileSlot slot;
  SecSecret key;
};

void makeOpener(Opener& opener, SecFileSession& session, SecFileWork& work) {
  const SecFormat1Store& former = *work.former();
  if (former.protection() == SecFileProtection::keyFile) {
    const SecFileFolder* const folder = session.keyFolder(true);
    secRequire(folder != nullptr, errSecDataNotAvailable);
    opener.file.emplace(*folder, work.connection().owner());
    opener.slot = opener.file->slot();
    opener.key = opener.file->slotKey().clone();
  } else {
    opener.slot = secMakeSlot(SecFileProtection::passphrase);
    opener.key = secDeriveSlotKey(opener.slot, former.secret().bytes());
  }
}

void copyEntries(SecFormat1Store& former, const SecFileContext& to, const SecFileHeader& header,
                 SecFileSeal& seal) {
  SecFileTransaction transaction(to, seal, SecStorage::Access::change);
  former.verify();
  former.read([&](const SecRow& row) {
    transaction.insert(row.entry);
    return true;
  });
  seal.header = secWriteHeader(to.database, header);
  seal.noteKey = secRandomSecret(secKeySize);
  transaction.finish();
}

}  // namespace

void secMigrate(SecFileSession& session) {
  if (session.connection().database().format() != secFileFormat1) return;
  session.requireChangeable();
  SecFileWork work(session, true, SecFileWork::Trust::nothing);
  SecFormat1Store* const former = work.former();
  if (!former) return;  // another process was first
  secRequire(!former->isLocked(), errSecInteractionNotAllowed);
  keepCopy(work);
  Opener opener;
  makeOpener(opener, session, work);
  SecFileKeys keys;
  SecFileHeader header{secRandomBytes<sizeof(SecStoreID)>(), keys.id(), secRandomBytes<sizeof(SecTag)>(), {}};
  secRenewSlot(opener.slot, opener.key.bytes(), keys);
  header.slots.push_back(opener.slot);
  SecFileSeal seal;
  SecFileDatabase& database = work.database();
  database.setFormat(secFileFormat);
  secMakeTables(database, header.fileNumber);
  copyEntries(*former, {database, keys, header.store}, header, seal);
  database.runOnce("DROP TABLE directory;DROP TABLE entry;DROP TABLE store");
  if (opener.file) opener.file->keep();
  work.commit(header.store, seal);
  session.keyring().adopt(std::move(keys), opener.slot.number, std::move(opener.key));
  session.forgetFormer();
}

std::vector<std::string> secFormerCopies(const SecFileFolder& folder, const std::string& name) {
  std::vector<std::string> copies = folder.names();
  std::erase_if(copies,
                [&](const std::string& other) { return !other.starts_with(name + std::string(suffix)); });
  return copies;
}

std::string secKeyFileOfCopy(const SecFileFolder& folder, const std::string& copy) {
  std::string name;
  static_cast<void>(secStatusOf([&] {
    SecFileDatabase database(folder, copy, std::chrono::milliseconds(0));
    const SecFileUnitOfWork reading(database, false);
    const SecFormat1Store store(database);
    if (store.protection() == SecFileProtection::keyFile) name = store.keyFileName();
  }));
  return name;
}

void secEraseFormerCopies(SecFileSession& session) {
  const SecFileFolder& folder = session.connection().folder();
  for (const std::string& copy : secFormerCopies(folder, session.site().name)) {
    const std::string keyFile = secKeyFileOfCopy(folder, copy);
    const SecFileFolder* const keyFolder = session.keyFolder();
    if (keyFolder && !keyFile.empty()) keyFolder->erase(keyFile);
    folder.erase(copy);
  }
}
