// Marked names and secrets, searched wherever a store could leave them.
#include <fcntl.h>
#include <sys/wait.h>

#include <csignal>
#include <random>

#include "Calls.h"
#include "Faults.h"

namespace {

constexpr std::size_t markSize = 24;

/// Made up after the process that is searched was started, so that it can hold them only as it was told.
struct Marks {
  Marks() {
    std::random_device random;
    for (std::string* mark : {&account, &service, &label, &secret})
      while (mark->size() < markSize) *mark += static_cast<char>('a' + random() % 26);
  }
  std::string account, service, label, secret;
};

std::string wide(const std::string& text, bool mostSignificantFirst) {
  std::string units;
  for (const char letter : text)
    units += mostSignificantFirst ? std::string(1, '\0') + letter : std::string(1, letter) + '\0';
  return units;
}

/// How many of the marks are in `content`, as bytes or in either order of wide text.
std::size_t marksIn(const std::string& content, const Marks& marks) {
  std::size_t found = 0;
  for (const std::string& mark : {marks.account, marks.service, marks.label, marks.secret})
    for (const std::string& form : {mark, wide(mark, true), wide(mark, false)})
      found += content.find(form) != content.npos;
  return found;
}

/// More than any process here uses: what a sanitizer reserves for its own notes.
constexpr std::size_t reservation = std::size_t{64} << 30;

/// All that a process could read or write in its memory, as a core image of it would hold.
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

/// Takes marks from the pipe straight into memory that is overwritten in the end.
SecEntry receiveEntry(int from) {
  SecEntry entry;
  for (auto* text : {&entry.attributes.account, &entry.attributes.service, &entry.attributes.label}) {
    text->emplace(markSize, u'\0');
    for (char16_t& unit : **text)
      if (::read(from, &unit, 1) != 1) ::_exit(9);
  }
  entry.secret = SecSecret(markSize);
  if (::read(from, entry.secret.writableBytes().data(), markSize) != markSize) ::_exit(9);
  return entry;
}

/// Keeps the marked entry, stopping where it is to be looked at: holding it, in the middle of writing its
/// journal, and with the store locked.
int keep(const TemporaryPlace& temporary, int from) {
  std::unique_ptr<SecFileStorage> storage;
  if (SecFileStorage::open(temporary.place, Passwords::make, storage) != errSecSuccess) return 1;
  {
    const SecEntry entry = receiveEntry(from);
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
  storage->lock();
  ::raise(SIGSTOP);
  return 0;
}

void goOn(pid_t process) {
  ::kill(process, SIGCONT);
  ::waitpid(process, nullptr, WUNTRACED);
}

void look(const TemporaryPlace& temporary, pid_t process, const Marks& marks) {
  ::waitpid(process, nullptr, WUNTRACED);
  EXPECT_GE(marksIn(memoryOf(process), marks), 4u) << "the search does not find what a process holds";
  goOn(process);
  const std::string journal = readFile(temporary.place.store + "-journal");
  EXPECT_TRUE(journal.size() > 1000 && marksIn(journal, marks) == 0) << "in the journal, or there was none";
  goOn(process);
  EXPECT_EQ(marksIn(memoryOf(process), marks), 0u) << "in the memory of a process that has locked its store";
  count("memory searched");
}

}  // namespace

TEST_F(SecFileFaults, Traces) {
  const std::size_t rounds = inForm(1, 10);
  for (std::size_t round = 0; round < rounds; ++round) {
    const TemporaryPlace temporary;
    const std::string output = temporary.root / "output";
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t process = inChild([&] {
      const int file = ::open(output.c_str(), O_CREAT | O_WRONLY, 0600);
      ::dup2(file, 1);
      ::dup2(file, 2);
      return keep(temporary, ends[0]);
    });
    const Marks marks;
    const std::string all = marks.account + marks.service + marks.label + marks.secret;
    ASSERT_EQ(::write(ends[1], all.data(), all.size()), static_cast<ssize_t>(all.size()));
    look(temporary, process, marks);
    goOn(process);
    std::size_t files = 0;
    for (const auto& item : std::filesystem::recursive_directory_iterator(temporary.root)) {
      files += item.is_regular_file();
      EXPECT_EQ(marksIn(item.path().string(), marks), 0u) << "in the name of " << item;
      EXPECT_TRUE(item.is_directory() || marksIn(readFile(item.path()), marks) == 0) << "in " << item;
    }
    EXPECT_EQ(files, 3u) << "not the store, its key and what was said";
    count("files searched", files);
    ::close(ends[0]);
    ::close(ends[1]);
  }
}
