// The store in a credential service that tests/desktop/on has started, and in fakes of one.
#include <Security/SecDesktopStorage.h>
#include <Security/SecFileStorage.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <map>
#include <thread>

#include "tests/desktop/FakeService.h"
#include "tests/support/Command.h"
#include "tests/support/Files.h"
#include "tests/support/SecStorageConformance.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

std::shared_ptr<SecStorage> openStorage(const SecDesktopOptions& options = {}) {
  std::unique_ptr<SecDesktopStorage> storage;
  EXPECT_EQ(SecDesktopStorage::open(options, storage), errSecSuccess);
  return storage;
}

/// A storage in which there is nothing of ours.
std::shared_ptr<SecStorage> emptyStorage() {
  const auto storage = openStorage();
  secSetDefaultStorage(storage);
  for (const char* all : {"class=generic", "class=internet"}) {
    const OSStatus status = SecItemDelete(writtenMap(all));
    EXPECT_TRUE(status == errSecSuccess || status == errSecItemNotFound) << status;
  }
  return storage;
}

OSStatus add(const std::string& account) {
  return SecItemAdd(writtenMap("class=generic service=mail label=L valueData=one account=" + account));
}

OSStatus performOn(SecStorage& storage, const std::string& operation) {
  SecStorageInfo info;
  const auto entry = writtenMap("class=generic account=ann service=mail returnData=1");
  if (operation == "add") return add("bob");
  if (operation == "copy") return SecItemCopyMatching(entry);
  if (operation == "update") return SecItemUpdate(entry, writtenMap("account=cat label=M valueData=two"));
  if (operation == "delete") return SecItemDelete(entry);
  return operation == "info" ? storage.copyInfo(info) : errSecParam;
}

/// Short limits, so that the tests are quick, and the time that a call may take beyond its limit.
constexpr auto limit = 200ms;
constexpr auto slack = 1s;

std::shared_ptr<SecStorage> openImpatiently(bool allowsPrompts = true) {
  const auto storage = openStorage({limit, limit, allowsPrompts, "x11:1"});
  secSetDefaultStorage(storage);
  return storage;
}

/// Starts a process that runs `work` and ends with its result.
template <class Work>
pid_t start(Work&& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  return child;
}

/// Waits for processes and returns how many of them ended with a result.
std::map<int, int> resultsOf(const std::vector<pid_t>& processes) {
  std::map<int, int> results;
  for (const pid_t process : processes) {
    int status = 0;
    waitpid(process, &status, 0);
    ++results[WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status)];
  }
  return results;
}

std::size_t entriesOf(SecStorage& storage) {
  SecStorageInfo info;
  EXPECT_EQ(storage.copyInfo(info), errSecSuccess);
  return info.entries;
}

/// Lets processes add one entry at the same moment; returns how many of them did, and how many were refused.
std::pair<int, int> race(int adders) {
  int gate[2];
  EXPECT_EQ(pipe(gate), 0);
  std::vector<pid_t> processes;
  for (int i = 0; i < adders; ++i)
    processes.push_back(start([&] {
      secSetDefaultStorage(openStorage());
      static_cast<void>(SecItemCopyMatching(writtenMap("class=generic")));  // connects
      close(gate[1]);
      char byte = 0;
      while (read(gate[0], &byte, 1) > 0) continue;
      const OSStatus status = add("ann");
      return status == errSecSuccess ? 0 : status == errSecDuplicateItem ? 1 : 2;
    }));
  std::this_thread::sleep_for(50ms);
  close(gate[0]);
  close(gate[1]);
  auto results = resultsOf(processes);
  return {results[0], results[1]};
}

/// The process that owns the service's name; 0 if there is none.
pid_t processOfService() {
  const std::string reply = outputOf(
      "dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / "
      "org.freedesktop.DBus.GetConnectionUnixProcessID string:org.freedesktop.secrets 2>&1 || true");
  return reply.find("uint32 ") == reply.npos ? 0 : std::stoi(cut(reply, "uint32 ").second);
}

std::string nameOf(pid_t process) {
  return cut(readFile("/proc/" + std::to_string(process) + "/comm"), "\n").first;
}

/// Kills the service while it is asked to add an entry.
void killServiceInMidCall() {
  const pid_t service = processOfService();
  kill(service, SIGSTOP);
  const pid_t killer = start([&] {
    std::this_thread::sleep_for(100ms);
    return kill(service, SIGKILL);
  });
  EXPECT_EQ(add("bob"), errSecIO);
  resultsOf({killer});
}

void startGnomeKeyring(bool unlocked) {
  const std::string options = "--foreground --components=secrets >/dev/null 2>&1 &";
  const std::string command = "gnome-keyring-daemon " + options;
  EXPECT_EQ(
      std::system(
          (unlocked ? "printf password | exec gnome-keyring-daemon --unlock " + options : command).c_str()),
      0);
  while (processOfService() == 0) std::this_thread::sleep_for(10ms);
}

const std::size_t threadsAtStart = namesIn("/proc/self/task");

}  // namespace

TEST(SecDesktopStorage, Conforms) {
  SecStorageConformance::Terms terms{true, 1'000};
  const pid_t service = processOfService();
  // KeePassXC crashes now and then; what it returns until then must be right.
  if (nameOf(service) == "keepassxc")
    terms.isEnd = [&](OSStatus status) { return status == errSecIO && processOfService() != service; };
  SecStorageConformance::expect(emptyStorage, terms);
}

TEST(SecDesktopFaults, EachHasItsStatusInTimeAndChangesNothing) {
  std::map<std::string, Clock::duration> longest;
  for (const auto& row : vectors("desktop-faults.tsv")) {
    SCOPED_TRACE(row.at(0) + " " + row.at(1) + " " + row[2]);
    std::optional<FakeService> service(std::in_place);
    auto storage = openImpatiently();
    EXPECT_EQ(add("ann"), errSecSuccess);
    if (row[1] == "OpenSession" || row[1] == "ReadAlias") storage = openImpatiently();  // asked only at first
    service->breakNext(row[1], row[2]);
    const auto start = Clock::now();
    EXPECT_EQ(performOn(*storage, row[0]), std::stoi(row[3]));
    const auto taken = Clock::now() - start;
    EXPECT_LT(taken, limit + slack);
    longest[row[2]] = std::max(longest[row[2]], taken);
    if (row[2].ends_with("die")) {
      service.reset();
      service.emplace();
    } else {
      NSRefPtr<NSDictionary> found;
      EXPECT_EQ(SecItemCopyMatching(writtenMap("class=generic service=mail returnAttributes=1"), &found), 0);
      EXPECT_EQ(shown(found), "class=generic password account=ann label=L service=mail");
      EXPECT_EQ(service->items(), 1);
    }
    EXPECT_EQ(add("bob"), errSecSuccess);
  }
  for (const auto& [fault, time] : longest)
    std::cout << fault << ": at most " << std::chrono::duration_cast<std::chrono::milliseconds>(time).count()
              << " ms\n";
}

/// Breaks the service while it is to keep the key of a store.
void breakSlot(const std::string& member, const std::string& fault, OSStatus status) {
  SCOPED_TRACE(member + " " + fault);
  const TemporaryFolder folder;
  const SecFilePlace place{folder.root / "data/store", folder.root / "keys", true};
  std::unique_ptr<SecFileStorage> file;
  ASSERT_EQ(SecFileStorage::open(place, SecFileStorage::Missing::make, file), errSecSuccess);
  const std::string before = readFile(place.store);
  FakeService service;
  service.breakNext(member, fault);
  EXPECT_EQ(file->addDesktop({limit, limit, true, ""}), status);
  EXPECT_EQ(readFile(place.store), before);
  EXPECT_TRUE(service.items() == 0 || fault == "die" || fault == "wrong types" || fault == "bus gone");
}

TEST(SecDesktopFaults, AStoreThatDoesNotGetItsKeyStaysAsItIs) {
  for (const auto& row : vectors("desktop-slots.tsv")) breakSlot(row.at(0), row.at(1), std::stoi(row.at(2)));
}

// Last on its bus, which ends while the key is read back.
TEST(SecDesktopBusDeath, AStoreThatDoesNotGetItsKeyStaysAsItIs) {
  breakSlot("GetSecret", "bus gone", errSecIO);
}

TEST(SecDesktopStorage, OneOfSeveralAddersSucceeds) {
  for (int round = 0; round < 41; ++round) {
    const int adders = round < 40 ? 2 : 8;
    const auto storage = emptyStorage();
    EXPECT_EQ(race(adders), std::pair(1, adders - 1));
    EXPECT_EQ(entriesOf(*storage), 1u);
  }
}

TEST(SecDesktopStorage, AStoppedHolderOfTheLockIsWaitedForAndAKilledOneIsNot) {
  const auto storage = emptyStorage();
  const pid_t holder = start([] {
    return openStorage()->transact(SecStorage::Access::change, [](SecTransaction&) { raise(SIGSTOP); });
  });
  waitpid(holder, nullptr, WUNTRACED);
  storage->setWaitLimit(limit);
  const auto begin = Clock::now();
  EXPECT_EQ(add("ann"), errSecBusy);
  EXPECT_LT(Clock::now() - begin, limit + slack);
  EXPECT_EQ(SecItemCopyMatching(writtenMap("class=generic")), errSecItemNotFound);
  kill(holder, SIGKILL);
  EXPECT_EQ(add("ann"), errSecSuccess);
  EXPECT_EQ(resultsOf({holder}).begin()->first, -SIGKILL);
}

TEST(SecDesktopStorage, AForkedProcessConnectsAnew) {
  const auto storage = emptyStorage();
  EXPECT_EQ(add("ann"), errSecSuccess);
  EXPECT_EQ(resultsOf({start([] { return add("bob") == errSecSuccess ? 7 : 1; })}),
            (std::map<int, int>{{7, 1}}));
  EXPECT_EQ(add("cat"), errSecSuccess);
  EXPECT_EQ(entriesOf(*storage), 3u);
}

// One session in 256 has a shared value that begins with a zero, from which services derive different keys.
TEST(SecDesktopStorage, EverySessionHasOneKeyOnBothSides) {
  emptyStorage();
  EXPECT_EQ(add("ann"), errSecSuccess);
  for (int round = 0; round < 600 && !testing::Test::HasFailure(); ++round) {
    secSetDefaultStorage(openStorage());
    const std::string secret = "valueData=" + std::to_string(round);
    EXPECT_EQ(SecItemUpdate(writtenMap("class=generic account=ann"), writtenMap(secret)), errSecSuccess);
    NSRefPtr<NSDictionary> found;
    EXPECT_EQ(SecItemCopyMatching(writtenMap("class=generic account=ann returnData=1"), &found),
              errSecSuccess);
    EXPECT_EQ(shown(found), secret);
  }
}

TEST(SecDesktopStorage, NoSecretIsOnTheBusAndNoThreadIsLeft) {
  const TemporaryFolder folder;
  const std::string record = folder.root / "record";
  const pid_t monitor = start([&] {
    const int file = open(record.c_str(), O_CREAT | O_WRONLY, 0600);
    dup2(file, STDOUT_FILENO);
    return execlp("dbus-monitor", "dbus-monitor", "--session", "--binary", nullptr);
  });
  while (readFile(record).empty()) std::this_thread::sleep_for(10ms);
  const auto storage = emptyStorage();
  const auto entry = writtenMap("class=generic account=marked-account valueData=marked-secret returnData=1");
  EXPECT_EQ(SecItemAdd(entry), errSecSuccess);
  EXPECT_EQ(SecItemUpdate(entry, writtenMap("valueData=second-marked-secret")), errSecSuccess);
  NSRefPtr<NSDictionary> found;
  EXPECT_EQ(SecItemCopyMatching(entry, &found), errSecSuccess);
  EXPECT_EQ(shown(found), "valueData=second-marked-secret");
  EXPECT_EQ(SecItemDelete(entry), errSecSuccess);
  EXPECT_EQ(namesIn("/proc/self/task"), threadsAtStart);
  std::this_thread::sleep_for(200ms);
  kill(monitor, SIGTERM);
  resultsOf({monitor});
  const std::string recorded = readFile(record);
  EXPECT_NE(recorded.find("marked-account"), recorded.npos);
  EXPECT_EQ(recorded.find("marked-secret"), recorded.npos);
}

// A suite of its own: it leaves another service than it found.
TEST(SecDesktopDeath, AServiceThatDiesIsNeverReplacedSilently) {
  const auto storage = emptyStorage();
  EXPECT_EQ(add("ann"), errSecSuccess);
  const auto ann = writtenMap("class=generic account=ann");
  {
    killServiceInMidCall();
    const FakeService other;
    EXPECT_EQ(SecItemCopyMatching(ann), errSecServiceReplaced);
    EXPECT_EQ(add("cat"), errSecServiceReplaced);
    EXPECT_EQ(other.changes(), 0);
  }
  startGnomeKeyring(true);
  EXPECT_EQ(SecItemCopyMatching(ann), errSecSuccess);
  killServiceInMidCall();
  startGnomeKeyring(false);
  EXPECT_EQ(SecItemCopyMatching(ann), errSecUserCanceled) << "the prompt cannot be shown";
  EXPECT_EQ(add("cat"), errSecUserCanceled);
  SecStorageInfo info;
  EXPECT_EQ(storage->copyInfo(info), errSecSuccess);
  EXPECT_EQ(info.place + ": " + info.protection,
            "the desktop's gnome-keyring-daemon, collection Login: the desktop, locked; attributes are "
            "readable there");
  kill(processOfService(), SIGKILL);
  EXPECT_NE(SecItemCopyMatching(ann), errSecItemNotFound) << "there is no service";
  startGnomeKeyring(true);
  EXPECT_EQ(SecItemCopyMatching(ann), errSecSuccess);
  EXPECT_EQ(entriesOf(*storage), 1u) << "something was written after a service had died";
  kill(processOfService(), SIGKILL);
}

TEST(SecDesktopFaults, AnAbsentOrReplacedServiceIsReportedAndAGoodOneUsed) {
  const auto storage = openImpatiently();
  EXPECT_EQ(add("ann"), errSecNoService);
  {
    const FakeService first;
    EXPECT_EQ(add("ann"), errSecSuccess);
  }
  const FakeService second;
  EXPECT_EQ(SecItemCopyMatching(writtenMap("class=generic account=ann")), errSecServiceReplaced);
  EXPECT_EQ(second.changes(), 0);
  EXPECT_EQ(add("ann"), errSecSuccess);
}

TEST(SecDesktopFaults, PromptsAreNotShownUnlessAllowed) {
  FakeService service;
  for (const char* member : {"Unlock", "CreateItem"}) {
    openImpatiently(false);
    service.breakNext(member, "prompt dismissed");
    EXPECT_EQ(add("ann"), errSecInteractionRequired);
  }
  EXPECT_EQ(service.items(), 0);
}

TEST(SecDesktopFaults, SecretsAreNotAskedForUnlessWanted) {
  const FakeService service;
  openImpatiently();
  const auto ann = writtenMap("class=generic account=ann");
  EXPECT_EQ(add("ann"), errSecSuccess);
  EXPECT_EQ(add("ann"), errSecDuplicateItem);
  EXPECT_EQ(SecItemUpdate(ann, writtenMap("label=New service=chat")), errSecSuccess);
  EXPECT_EQ(SecItemUpdate(ann, writtenMap("valueData=new")), errSecSuccess);
  EXPECT_EQ(service.secretsGiven(), 0);
  EXPECT_EQ(SecItemCopyMatching(writtenMap("class=generic returnData=1")), errSecSuccess);
  EXPECT_EQ(service.secretsGiven(), 1);
  EXPECT_EQ(SecItemDelete(ann), errSecSuccess);
  EXPECT_EQ(service.secretsGiven(), 1);
}

TEST(SecDesktopFaults, WithoutABusOrWithOneThatIsSilent) {
  const TemporaryFolder folder;
  const std::string address = getenv("DBUS_SESSION_BUS_ADDRESS");
  const auto storage = openImpatiently();
  sockaddr_un silent{AF_UNIX, ""};
  (folder.root / "bus").string().copy(silent.sun_path, sizeof silent.sun_path - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&silent), sizeof silent), 0);
  ASSERT_EQ(listen(listener, 1), 0);
  for (const auto& [bus, status] :
       {std::pair<std::string, OSStatus>{"unix:path=/nowhere", errSecNoSessionBus},
        {"nonsense", errSecNoSessionBus},
        {"unix:path=" + (folder.root / "bus").string(), errSecTimedOut}}) {
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.c_str(), 1);
    const auto begin = Clock::now();
    EXPECT_EQ(add("ann"), status);
    EXPECT_LT(Clock::now() - begin, limit + slack);
  }
  close(listener);
  setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  const FakeService service;
  EXPECT_EQ(add("ann"), errSecSuccess);
}
