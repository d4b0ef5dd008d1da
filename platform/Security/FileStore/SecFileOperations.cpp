#include <Security/FileStore/SecFileOperations.h>

#include <utility>

#include <Security/FileStore/SecFileFormat.h>
#include <Security/FileStore/SecFileKeyFile.h>
#include <Security/FileStore/SecFileMigration.h>
#include <Security/FileStore/SecFileProtecting.h>
#include <Security/FileStore/SecFileTransaction.h>
#include <Security/FileStore/SecFileVerification.h>

namespace {

using Trust = SecFileWork::Trust;

void read(SecFileSession& session, const SecStorage::Work& work) {
  SecFileWork reading(session, false, Trust::all);
  if (auto* former = reading.former()) {
    SecFormat1Transaction transaction(*former);
    work(transaction);
  } else {
    SecFileTransaction transaction(reading.context(), reading.seal(), SecStorage::Access::read);
    work(transaction);
  }
}

/// Returns whether more than half of the file is unused.
bool isSparse(SecFileDatabase& database, const SecFileSeal& seal) {
  constexpr std::size_t perEntry = 100;  // in its bucket and in the tables
  constexpr std::size_t always = 24;
  const std::size_t needed = (seal.size + perEntry * seal.entries) / secFilePageSize + always;
  return database.pages() > 2 * needed;
}

/// Returns whether the file is to be written anew.
bool change(SecFileSession& session, const SecStorage::Work& work) {
  SecFileWork writing(session, true, Trust::all);
  secRequire(!writing.former(), errSecBusy);  // somebody has just put one in place
  SecFileSeal& seal = writing.seal();
  SecFileTransaction transaction(writing.context(), seal, SecStorage::Access::change);
  work(transaction);
  if (!transaction.hasChanged()) return false;
  secRenewStaleSlot(writing, session.keyring());
  transaction.finish();
  const bool sparse = isSparse(writing.database(), seal);
  writing.commit(writing.header().store, seal);
  return sparse;
}

std::string pathIn(const std::string& folder, const std::string& name) {
  return name.empty() ? name : folder + '/' + name;
}

void readFormer(SecFileInfo& info, SecFormat1Store& former, const std::string& keyFolder) {
  const bool hasFile = former.protection() == SecFileProtection::keyFile;
  info.keySlots.push_back({"", former.protection(), hasFile ? pathIn(keyFolder, former.keyFileName()) : ""});
  info.entries = former.count();
}

}  // namespace

void secTransact(SecFileSession& session, SecStorage::Access access, const SecStorage::Work& work) {
  if (access == SecStorage::Access::read) return read(session, work);
  SecFileDatabase& database = session.connection().database();
  session.requireChangeable();
  if (database.format() == secFileFormat1) secMigrate(session);
  if (change(session, work)) secCompact(session);
}

void secCompact(SecFileSession& session) {
  SecFileDatabase& database = session.connection().database();
  // The change was made: nobody is to wait for this, and a failure of it does not matter.
  const auto limit = database.setWaitLimit(std::chrono::milliseconds(0));
  static_cast<void>(secStatusOf([&] { database.compact(); }));
  database.setWaitLimit(limit);
}

void secVerify(SecFileSession& session) {
  SecFileWork reading(session, false, Trust::seal);
  if (auto* former = reading.former()) return former->verify();
  secVerifyStore(reading.context(), reading.seal());
}

void secAccept(SecFileSession& session) {
  SecFileWork reading(session, false, Trust::seal);
  if (reading.former()) return;
  session.watch().accept(reading.header().store, reading.seal(), session.keyFolder(true));
}

SecFileInfo secInfo(SecFileSession& session) {
  SecFileWork reading(session, false, Trust::nothing);
  SecFileInfo info;
  const SecFileFolder& folder = reading.connection().folder();
  const std::string& keyFolder = session.site().keyFolder;
  info.path = folder.pathOf(reading.connection().name());
  info.locked = session.isLocked();
  if (auto* former = reading.former()) {
    readFormer(info, *former, keyFolder);
  } else {
    for (const SecFileSlot& slot : reading.header().slots) {
      const bool hasFile = slot.protection == SecFileProtection::keyFile;
      info.keySlots.push_back({secHexadecimal(slot.number), slot.protection,
                               hasFile ? pathIn(keyFolder, secKeyFileName(slot.number)) : ""});
    }
    info.entries = secCountEntries(reading.database());
  }
  for (const std::string& copy : secFormerCopies(folder, reading.connection().name()))
    info.formerCopies.push_back({folder.pathOf(copy), pathIn(keyFolder, secKeyFileOfCopy(folder, copy))});
  return info;
}
