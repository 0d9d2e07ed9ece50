#include "sizewalk/directory_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "sizewalk/file_kinds.h"
#include "tests/support/file_access.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/temp_directory.h"

namespace {

/// What the reader asked of each entry, while a test listens.
struct StatusQuestion {
  int flags;
  unsigned mask;
};
std::vector<StatusQuestion>* questions = nullptr;

}  // namespace

// Found before the C library's function of that name.
extern "C" int statx(int directory, const char* path, int flags, unsigned mask,
                     struct statx* status) noexcept {
  if (questions != nullptr && *path != '\0') questions->push_back({flags, mask});
  return static_cast<int>(syscall(SYS_statx, directory, path, flags, mask, status));
}

namespace sizewalk {
namespace {

using test::TempDirectory;
using test::writeFile;

DirectoryResult read(const std::string& path, const ReadRules& rules = {},
                     std::size_t bufferSize = 65536) {
  DirectoryResult result;
  const base::FileDescriptor fd = openDirectory(path);
  EXPECT_TRUE(fd.valid()) << path;
  struct alignas(16) Block {
    std::byte bytes[16];
  };
  std::vector<Block> blocks(bufferSize / 16);
  readDirectory(rules, fd.get(), &result, std::as_writable_bytes(std::span(blocks)));
  return result;
}

const EntryRecord* find(const DirectoryResult& result, std::string_view name) {
  for (const EntryRecord& entry : result.entries) {
    if (result.nameOf(entry) == name) return &entry;
  }
  return nullptr;
}

TEST(ReadDirectory, FindsNothingInAnEmptyDirectory) {
  const TempDirectory dir;
  const DirectoryResult result = read(dir.path());
  EXPECT_TRUE(result.entries.empty());
  EXPECT_EQ(result.errors, 0u);
  EXPECT_EQ(result.systemCalls, 2u) << "its own status and one listing that found \".\" and \"..\"";
}

TEST(ReadDirectory, TellsFilesFoldersAndLinksApart) {
  const TempDirectory dir;
  writeFile(dir / "song.mp3", std::string(5000, 'x'));
  test::makeDirectory(dir / "folder");
  ASSERT_EQ(symlink("folder", (dir / "link").c_str()), 0);
  const DirectoryResult result = read(dir.path());
  ASSERT_EQ(result.entries.size(), 3u);

  struct stat status;
  ASSERT_EQ(stat((dir / "song.mp3").c_str(), &status), 0);
  const EntryRecord* song = find(result, "song.mp3");
  ASSERT_TRUE(song);
  EXPECT_EQ(song->kind, classifyName("song.mp3"));
  EXPECT_EQ(song->apparentSize, 5000u);
  EXPECT_EQ(song->allocatedSize, static_cast<std::uint64_t>(status.st_blocks) * 512);
  EXPECT_EQ(song->itemCount, 1u);
  EXPECT_EQ(song->hardLinkKey, 0u);
  EXPECT_EQ(song->flags, NodeFlags());

  const EntryRecord* folder = find(result, "folder");
  ASSERT_TRUE(folder);
  EXPECT_EQ(folder->kind, kKindFolder);
  EXPECT_EQ(folder->flags, NodeFlags(NodeFlag::Directory));
  EXPECT_EQ(folder->apparentSize, 0u);
  EXPECT_EQ(folder->itemCount, 0u);
  ASSERT_EQ(result.subdirectories.size(), 1u);
  EXPECT_EQ(&result.entries[result.subdirectories[0]], folder);

  const EntryRecord* link = find(result, "link");
  ASSERT_TRUE(link);
  EXPECT_EQ(link->kind, kKindSymbolicLink);
  EXPECT_EQ(link->flags, NodeFlags(NodeFlag::Symlink));
  EXPECT_EQ(link->apparentSize, 6u);
}

// A mount that is made when it is looked at cannot be had in a test, nor a server to ask again.
TEST(ReadDirectory, AsksForTheEntryItselfAndDisturbsNobody) {
  const TempDirectory dir;
  writeFile(dir / "file");
  test::makeDirectory(dir / "folder");
  std::vector<StatusQuestion> asked;
  questions = &asked;
  read(dir.path());
  questions = nullptr;
  ASSERT_EQ(asked.size(), 2U);
  for (const StatusQuestion& question : asked) {
    EXPECT_EQ(question.flags, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC);
    EXPECT_EQ(question.mask, unsigned{STATX_TYPE | STATX_NLINK | STATX_CTIME | STATX_INO |
                                      STATX_SIZE | STATX_BLOCKS | STATX_BTIME});
  }
}

TEST(ReadDirectory, CountsPipesAndSocketsAsItemsWithoutSize) {
  const TempDirectory dir;
  ASSERT_EQ(mkfifo((dir / "pipe.iso").c_str(), 0600), 0);
  const base::FileDescriptor socketFd(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  (dir / "s").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(socketFd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  const DirectoryResult result = read(dir.path());
  for (const char* name : {"pipe.iso", "s"}) {
    const EntryRecord* entry = find(result, name);
    ASSERT_TRUE(entry) << name;
    EXPECT_EQ(entry->kind, kKindUnknown);
    EXPECT_EQ(entry->itemCount, 1u);
    EXPECT_EQ(entry->apparentSize, 0u);
    EXPECT_GT(entry->birthTime, 0u);
  }
}

TEST(ReadDirectory, KeepsSparseAndHugeSizesApart) {
  const TempDirectory dir;
  const std::uint64_t huge = (std::uint64_t{1} << 43) - 4096;
  test::writeSparseFile(dir / "sparse", huge);
  const DirectoryResult result = read(dir.path());
  EXPECT_EQ(result.entries.at(0).apparentSize, huge);
  EXPECT_LT(result.entries.at(0).allocatedSize, 1000000u);
}

TEST(ReadDirectory, TakesAnyBytesForAName) {
  const TempDirectory dir;
  const std::string odd = "line\nbreak \xff\xfe";
  writeFile(dir / odd);
  writeFile(dir / std::string(255, 'n'));
  const DirectoryResult result = read(dir.path());
  EXPECT_TRUE(find(result, odd));
  EXPECT_TRUE(find(result, std::string(255, 'n')));
}

TEST(ReadDirectory, GivesBothNamesOfAFileTheSameKey) {
  const TempDirectory dir;
  writeFile(dir / "one", "data");
  ASSERT_EQ(link((dir / "one").c_str(), (dir / "two").c_str()), 0);
  const DirectoryResult with = read(dir.path());
  EXPECT_NE(find(with, "one")->hardLinkKey, 0u);
  EXPECT_EQ(find(with, "one")->hardLinkKey, find(with, "two")->hardLinkKey);
  const DirectoryResult without = read(dir.path(), {.dedupeHardLinks = false});
  EXPECT_EQ(find(without, "one")->hardLinkKey, 0u);
  EXPECT_EQ(find(without, "two")->hardLinkKey, 0u);
}

TEST(ReadDirectory, NeedsSeveralBatchesForALongListing) {
  const TempDirectory dir;
  for (int i = 0; i < 500; ++i) writeFile(dir / ("file" + std::to_string(i)));
  const DirectoryResult result = read(dir.path(), {}, 1024);
  std::map<std::string, int> seen;
  for (const EntryRecord& entry : result.entries) ++seen[std::string(result.nameOf(entry))];
  EXPECT_EQ(seen.size(), 500u);
  EXPECT_EQ(result.entries.size(), 500u);
  EXPECT_GT(result.systemCalls, 510u);
}

TEST(ReadDirectory, UsesTheChangeTimeWhereNoBirthTimeIsKept) {
  const DirectoryResult result = read("/sys/kernel");  // sysfs keeps no birth times
  ASSERT_FALSE(result.entries.empty());
  int compared = 0;
  for (const EntryRecord& entry : result.entries) {
    struct stat status;
    const std::string path = "/sys/kernel/" + std::string(result.nameOf(entry));
    if (lstat(path.c_str(), &status) != 0) continue;
    EXPECT_EQ(entry.birthTime, static_cast<std::uint32_t>(status.st_ctim.tv_sec)) << path;
    ++compared;
  }
  EXPECT_GT(compared, 0);
}

TEST(ReadDirectory, UsesTheBirthTimeWhereItIsKept) {
  const TempDirectory dir;
  writeFile(dir / "f");
  struct statx status;
  ASSERT_EQ(statx(AT_FDCWD, (dir / "f").c_str(), 0, STATX_BTIME, &status), 0);
  if (!(status.stx_mask & STATX_BTIME)) GTEST_SKIP() << "this file system keeps no birth times";
  const timespec longAgo[2] = {{1000, 0}, {1000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, (dir / "f").c_str(), longAgo, 0), 0);
  EXPECT_EQ(read(dir.path()).entries.at(0).birthTime,
            static_cast<std::uint32_t>(status.stx_btime.tv_sec));
}

TEST(ReadDirectory, KeepsAnEntryThatMayNotBeExamined) {
  const TempDirectory dir;
  test::makeDirectory(dir / "listable");
  writeFile(dir / "listable/secret", "hidden");
  ASSERT_EQ(chmod((dir / "listable").c_str(), 0444), 0);
  const test::OrdinaryFileAccess ordinary;
  const DirectoryResult result = read(dir / "listable");
  ASSERT_EQ(result.entries.size(), 1u);
  const EntryRecord& entry = result.entries[0];
  EXPECT_EQ(result.nameOf(entry), "secret");
  EXPECT_EQ(entry.flags, NodeFlags(NodeFlag::Unreadable));
  EXPECT_EQ(entry.kind, kKindUnknown);
  EXPECT_EQ(entry.itemCount, 1u);
  EXPECT_EQ(entry.apparentSize, 0u);
  EXPECT_EQ(entry.birthTime, 0u);
  EXPECT_EQ(result.errors, 1u);
}

TEST(ReadDirectory, TurnsAnEntryRemovedUnderItsHandsIntoAnUnreadableItem) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  std::uint64_t errors = 0;
  while (errors == 0 && std::chrono::steady_clock::now() < deadline) {
    const TempDirectory dir(TempDirectory::Place::Memory);
    for (int i = 0; i < 4000; ++i) writeFile(dir / ("f" + std::to_string(i)), "x");
    std::thread remover([&] {
      for (int i = 3999; i >= 0; --i) unlink((dir / ("f" + std::to_string(i))).c_str());
    });
    const DirectoryResult result = read(dir.path(), {}, 262144);
    remover.join();
    errors = result.errors;
    std::uint64_t unreadable = 0;
    for (const EntryRecord& entry : result.entries) {
      if (!entry.flags.has(NodeFlag::Unreadable)) continue;
      ++unreadable;
      EXPECT_EQ(entry.allocatedSize, 0u);
      EXPECT_EQ(entry.itemCount, 1u);
    }
    EXPECT_EQ(unreadable, errors);
  }
  EXPECT_GT(errors, 0u);
}

TEST(ReadDirectory, CountsOneErrorWhenTheListingFails) {
  const TempDirectory dir;
  writeFile(dir / "file");
  const base::FileDescriptor notADirectory(open((dir / "file").c_str(), O_RDONLY));
  DirectoryResult result;
  alignas(16) std::byte buffer[4096];
  readDirectory({}, notADirectory.get(), &result, buffer);
  EXPECT_EQ(result.errors, 1u);
  EXPECT_TRUE(result.entries.empty());
  EXPECT_FALSE(result.unreadable);
}

TEST(ReadDirectory, BreaksOffWhenToldToAndKeepsWhatItHas) {
  const TempDirectory dir;
  for (int i = 0; i < 100; ++i) writeFile(dir / std::to_string(i));
  const std::atomic<bool> stop{true};
  EXPECT_LE(read(dir.path(), {.stop = &stop}).entries.size(), 1u);
}

TEST(ReadDirectory, ListsAMountPointWithoutEnteringIt) {
  const TempDirectory dir;
  test::makeDirectory(dir / "other");
  test::makeDirectory(dir / "bound");
  test::makeDirectory(dir / "plain");
  const std::string outcome = test::inPrivateMounts([&]() -> std::string {
    if (mount("tmpfs", (dir / "other").c_str(), "tmpfs", 0, nullptr) != 0) return "cannot mount";
    if (mount((dir / "plain").c_str(), (dir / "bound").c_str(), nullptr, MS_BIND, nullptr) != 0) {
      return "cannot bind";
    }
    const DirectoryResult result = read(dir.path());
    if (result.subdirectories.size() != 1) return "more than the plain folder is to be entered";
    if (result.nameOf(result.entries[result.subdirectories[0]]) != "plain") return "wrong folder";
    for (const char* name : {"other", "bound"}) {
      const EntryRecord* entry = find(result, name);
      if (!entry) return std::string(name) + " is missing";
      if (!entry->flags.has(NodeFlag::MountPoint)) return std::string(name) + " is not marked";
      if (!entry->flags.has(NodeFlag::Directory)) return std::string(name) + " is no directory";
    }
    return "";
  });
  if (outcome.starts_with("cannot")) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "");
}

TEST(OpenDirectory, FollowsNoSymbolicLinkAtTheEnd) {
  const TempDirectory dir;
  test::makeDirectory(dir / "real");
  ASSERT_EQ(symlink("real", (dir / "link").c_str()), 0);
  EXPECT_TRUE(openDirectory(dir / "real").valid());
  EXPECT_FALSE(openDirectory(dir / "link").valid());
  EXPECT_FALSE(openDirectory(dir / "missing").valid());
}

TEST(OpenDirectory, DoesNotWaitForAPipe) {
  const TempDirectory dir;
  ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(openDirectory(dir / "pipe").valid());
  EXPECT_EQ(errno, ENOTDIR);
}

TEST(OpenDirectory, ReachesBeyondTheLongestPathOfTheKernel) {
  const TempDirectory dir;
  std::string path = dir.path();
  base::FileDescriptor at(open(path.c_str(), O_RDONLY | O_DIRECTORY));
  const std::string name(250, 'd');
  while (path.size() < 3 * PATH_MAX) {
    ASSERT_EQ(mkdirat(at.get(), name.c_str(), 0700), 0);
    at = base::FileDescriptor(openat(at.get(), name.c_str(), O_RDONLY | O_DIRECTORY));
    path += "/" + name;
  }
  ASSERT_EQ(mkdirat(at.get(), "last", 0700), 0);
  EXPECT_FALSE(base::FileDescriptor(open(path.c_str(), O_RDONLY)).valid());
  const DirectoryResult result = read(path);
  ASSERT_EQ(result.entries.size(), 1u);
  EXPECT_EQ(result.nameOf(result.entries[0]), "last");
  EXPECT_FALSE(openDirectory(path + "/missing").valid());
}

TEST(OpenDirectory, ReachesPathsOfEveryLengthAroundTheLimit) {
  const TempDirectory dir;
  std::string base = dir.path();
  base::FileDescriptor at(open(base.c_str(), O_RDONLY | O_DIRECTORY));
  while (base.size() < PATH_MAX - 260) {
    const std::string name(200, 'd');
    ASSERT_EQ(mkdirat(at.get(), name.c_str(), 0700), 0);
    at = base::FileDescriptor(openat(at.get(), name.c_str(), O_RDONLY | O_DIRECTORY));
    base += "/" + name;
  }
  for (std::size_t length = PATH_MAX - 4; length <= PATH_MAX + 4; ++length) {
    const std::size_t left = length - base.size() - 1;
    ASSERT_GE(left, 1u);
    std::string path = base;
    const std::string first(left > 200 ? 150 : left, 'a');
    ASSERT_TRUE(mkdirat(at.get(), first.c_str(), 0700) == 0 || errno == EEXIST);
    path += "/" + first;
    if (left > 200) {
      const std::string second(left - 151, 'b');
      const base::FileDescriptor inner(openat(at.get(), first.c_str(), O_RDONLY | O_DIRECTORY));
      ASSERT_EQ(mkdirat(inner.get(), second.c_str(), 0700), 0);
      path += "/" + second;
    }
    ASSERT_EQ(path.size(), length);
    EXPECT_TRUE(openDirectory(path).valid()) << length;
  }
}

}  // namespace
}  // namespace sizewalk
