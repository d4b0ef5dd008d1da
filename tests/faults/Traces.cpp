// Searches for marked names and secrets wherever a store could leave them.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <algorithm>
#include <bitset>
#include <csignal>
#include <random>
#include <set>

#include "Calls.h"
#include "Faults.h"

namespace {

/// Short ones are those that strings of the standard library would keep inside themselves.
constexpr std::size_t markSizes[] = {5, 24};

/// Made after the start of the process that is searched, so that it has them only from its input.
struct Marks {
  explicit Marks(std::size_t size) {
    std::random_device random;
    for (std::string* mark : {&account, &service, &label, &secret})
      while (mark->size() < size) *mark += static_cast<char>('!' + random() % ('~' - '!'));
  }
  std::string account, service, label, secret;
};

/// Returns how many of the marks are in `content`, as bytes or as UTF-16, which differs by its zero bytes.
/// The end of a long mark is enough: the allocator writes over the start of a block that is freed.
std::size_t marksIn(std::string content, const Marks& marks) {
  std::erase(content, '\0');
  constexpr std::size_t enough = 12;
  std::size_t found = 0;
  for (const std::string& mark : {marks.account, marks.service, marks.label, marks.secret})
    found += content.find(mark.substr(mark.size() - (std::min)(mark.size(), enough))) != content.npos;
  return found;
}

constexpr std::size_t keySize = 32;

unsigned startOf(std::string_view bytes) {
  return static_cast<unsigned char>(bytes[0]) * 256u + static_cast<unsigned char>(bytes[1]);
}

/// Returns how many of the keys are in a process's memory, by their ends, like marks.
std::size_t keysIn(std::string_view image, int keys) {
  std::set<std::string_view> ends, found;
  static std::string all;
  all.resize(static_cast<std::size_t>(::lseek(keys, 0, SEEK_END)));
  EXPECT_EQ(::pread(keys, all.data(), all.size(), 0), static_cast<ssize_t>(all.size()));
  constexpr std::size_t enough = 8;
  for (std::size_t at = keySize; at <= all.size(); at += keySize)
    ends.insert(std::string_view(all).substr(at - enough, enough));
  ends.erase(std::string_view("\0\0\0\0\0\0\0\0", enough));
  std::bitset<65536> starts;  // most places can be passed over
  for (const std::string_view end : ends) starts.set(startOf(end));
  for (std::size_t at = 0; at + enough <= image.size(); ++at) {
    if (!starts[startOf(image.substr(at))]) continue;
    if (const auto end = ends.find(image.substr(at, enough)); end != ends.end()) found.insert(*end);
  }
  return found.size();
}

/// More than any process here uses, but less than a sanitizer reserves for its shadow memory.
constexpr std::size_t reservation = std::size_t{64} << 30;

/// Returns all writable memory of a process, as its core image would contain it.
std::string memoryOf(pid_t process) {
  std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
  const int memory = ::open(("/proc/" + std::to_string(process) + "/mem").c_str(), O_RDONLY);
  std::string image;
  for (std::string line; std::getline(maps, line);) {
    std::size_t start = 0, end = 0;
    char rights[5] = {};
    if (std::sscanf(line.c_str(), "%zx-%zx %4s", &start, &end, rights) != 3 || rights[1] != 'w') continue;
    if (end - start >= reservation) continue;
    const std::size_t size = image.size();
    image.resize(size + end - start);
    const ssize_t got = ::pread64(memory, image.data() + size, end - start, static_cast<off64_t>(start));
    image.resize(size + static_cast<std::size_t>(got < 0 ? 0 : got));
  }
  ::close(memory);
  return image;
}

/// Reads marks from the pipe directly into memory that is cleansed in the end.
SecEntry receiveEntry(int from, std::size_t size) {
  SecEntry entry;
  for (auto* text : {&entry.attributes.account, &entry.attributes.service, &entry.attributes.label}) {
    text->emplace(size, u'\0');
    for (char16_t& unit : **text)
      if (::read(from, &unit, 1) != 1) ::_exit(9);
  }
  entry.secret = SecSecret(size);
  if (::read(from, entry.secret.writableBytes().data(), size) != static_cast<ssize_t>(size)) ::_exit(9);
  return entry;
}

/// Stores the marked entry, and stops where its memory is searched: with the entry at hand, while the journal
/// exists, and with the store locked, after its keys were changed in all ways.
int keep(const TemporaryPlace& temporary, int from, std::size_t size) {
  std::unique_ptr<SecFileStorage> storage;
  if (SecFileStorage::open(temporary.place, Passwords::make, storage) != errSecSuccess) return 1;
  {
    const SecEntry entry = receiveEntry(from, size);
    ::raise(SIGSTOP);
    const auto insert = [&](SecTransaction& store) { store.insert(entry); };
    if (storage->transact(SecStorage::Access::change, insert) != errSecSuccess) return 2;
    Calls::arm(Calls::naming, 1, Calls::Fate::stop);
    const auto replace = [&](SecTransaction& store) {
      std::int64_t number = 0;
      store.find({entry.attributes}, SecSecrets::skip, [&](const SecRow& row) {
        number = row.number;
        return false;
      });
      store.replace(number, entry.attributes, entry.secret.clone());
    };
    if (storage->transact(SecStorage::Access::change, replace) != errSecSuccess) return 3;
    Calls::disarm();
  }
  const SecSecret passphrase = secretFrom("passphrase");
  if (storage->rotate() != errSecSuccess) return 4;
  if (storage->setPassphrase(passphrase.bytes()) != errSecSuccess) return 5;
  storage->lock();
  if (storage->unlock(passphrase.bytes()) != errSecSuccess || storage->verify() != errSecSuccess) return 6;
  storage->lock();
  ::raise(SIGSTOP);
  return 0;
}

void resume(pid_t process) {
  ::kill(process, SIGCONT);
  ::waitpid(process, nullptr, WUNTRACED);
}

void look(const TemporaryPlace& temporary, pid_t process, const Marks& marks, int keys) {
  ::waitpid(process, nullptr, WUNTRACED);
  std::string image = memoryOf(process);
  EXPECT_EQ(marksIn(image, marks), 4u) << "the search misses what a process holds";
  EXPECT_GT(keysIn(image, keys), 0u) << "the search misses the keys that a process holds";
  resume(process);
  const std::string journal = readFile(temporary.place.store + "-journal");
  EXPECT_TRUE(journal.size() > 1000 && marksIn(journal, marks) == 0) << "in the journal, or none";
  resume(process);
  image = memoryOf(process);
  EXPECT_EQ(marksIn(image, marks), 0u) << "in the memory of a process that has locked its store";
  EXPECT_EQ(keysIn(image, keys), 0u) << "keys in its memory";
  count("memory searched");
}

void leaveNoTrace(std::size_t size) {
  const TemporaryPlace temporary;
  const std::string output = temporary.root / "output";
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const int keys = ::memfd_create("keys", MFD_CLOEXEC);
  const pid_t process = inChild([&] {
    Calls::copyKeysTo(keys);
    const int file = ::open(output.c_str(), O_CREAT | O_WRONLY, 0600);
    ::dup2(file, 1);
    ::dup2(file, 2);
    return keep(temporary, ends[0], size);
  });
  const Marks marks(size);
  const std::string all = marks.account + marks.service + marks.label + marks.secret;
  ASSERT_EQ(::write(ends[1], all.data(), all.size()), static_cast<ssize_t>(all.size()));
  look(temporary, process, marks, keys);
  resume(process);
  std::size_t files = 0;
  for (const auto& item : std::filesystem::recursive_directory_iterator(temporary.root)) {
    files += item.is_regular_file();
    EXPECT_EQ(marksIn(item.path().string(), marks), 0u) << "in the name of " << item;
    EXPECT_TRUE(item.is_directory() || marksIn(readFile(item.path()), marks) == 0) << "in " << item;
  }
  EXPECT_EQ(files, 3u) << "not just the store, the note of its changes and the output";
  count("files searched", files);
  for (const int end : {ends[0], ends[1], keys}) ::close(end);
}

}  // namespace

TEST_F(SecFileFaults, Traces) {
  const std::size_t rounds = inForm(1, 10);
  for (std::size_t round = 0; round < rounds; ++round)
    for (const std::size_t size : markSizes) leaveNoTrace(size);
}
