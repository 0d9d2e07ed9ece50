#include "app/actions/trash_directory.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <utility>

#include "app/actions/trash_record.h"
#include "base/directories.h"
#include "base/file_descriptor.h"
#include "base/file_lock.h"
#include "sizewalk/long_path.h"

// The record is written first and the item moved then, so that at every moment each item of the
// trash has a record. A name is chosen by looking; that nobody took it meanwhile is seen to by a
// rename that replaces nothing. A lock keeps processes of ours from writing one record at the same
// time; other programs do not know it, but make records only under names that have none yet.

namespace app {

namespace {

constexpr int kLastCounter = 9999;

constexpr const char* kNameTaken = "There is already something in the trash with that name.";
constexpr const char* kNoRecord = "Could not write the trash record.";
constexpr const char* kChanged =
    "It has changed since it was put on the list: something else lies there now.";

base::FileDescriptor openDirectoryToUse(const std::string& path) {
  return base::FileDescriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// One item on its way into one trash, whose directories are open.
class Trashing {
 public:
  Trashing(const TrashItem& item, const std::string& recordedPath, int files, int info)
      : item_(item), recordedPath_(recordedPath), files_(files), info_(info) {}

  bool run() {
    source_ = sizewalk::reachPath(item_.path);
    if (!source_) return fail(std::strerror(errno));
    const std::string name = item_.path.substr(item_.path.rfind('/') + 1);
    for (int counter = 0; counter <= kLastCounter; ++counter) {
      const Attempt attempt = tryName(nameInTrash(name, counter));
      if (attempt != Attempt::NameTaken) return attempt == Attempt::Moved;
    }
    return fail(kNameTaken);
  }

  /// Empty after a failure: the item lies on another file system.
  const std::string& error() const { return error_; }

 private:
  enum class Attempt { Moved, NameTaken, Failed };

  bool fail(std::string why) {
    error_ = std::move(why);
    return false;
  }

  Attempt tryName(const std::string& name) {
    if (isTaken(name)) return Attempt::NameTaken;
    TrashRecord record(info_, name);
    if (!record.write(recordText(recordedPath_, std::time(nullptr)))) {
      fail(kNoRecord);
      return Attempt::Failed;
    }
    const Attempt attempt = move(name);
    if (attempt != Attempt::Moved) record.takeBack();
    return attempt;
  }

  Attempt move(const std::string& name) {
    if (hasChanged()) {
      fail(kChanged);
      return Attempt::Failed;
    }
    if (renameTo(name)) return Attempt::Moved;
    const int reason = errno;
    if (reason == EXDEV) return Attempt::Failed;
    if (reason == EEXIST) return Attempt::NameTaken;
    fail(std::strerror(reason));
    return Attempt::Failed;
  }

  bool isTaken(const std::string& name) const {
    struct stat status {};
    // AT_EMPTY_PATH: what has no name, as "folder/", cannot have the directory's either.
    return ::fstatat(files_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH) == 0;
  }

  /// An item that is gone has not changed: the rename tells what is the matter.
  bool hasChanged() const {
    if (!item_.identity) return false;
    const std::optional<ItemIdentity> now = identify(item_.path);
    return now && *now != *item_.identity;
  }

  bool renameTo(const std::string& name) const {
    const int from = source_->directory();
    const char* rest = source_->rest.c_str();
    if (::renameat2(from, rest, files_, name.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // Neither every file system nor every kernel knows the flag.
    if (isTaken(name)) {
      errno = EEXIST;
      return false;
    }
    return ::renameat(from, rest, files_, name.c_str()) == 0;
  }

  const TrashItem& item_;
  const std::string& recordedPath_;
  const int files_;
  const int info_;
  std::optional<sizewalk::ReachedPath> source_;
  std::string error_;
};

/// What there is to say of an attempt; nothing at all when the item was moved, an empty sentence
/// when it lies on another file system.
std::optional<std::string> failureOf(const std::string& trashDir, const TrashItem& item,
                                     const std::string& recordedPath) {
  const std::string files = trashDir + "/files";
  const std::string info = trashDir + "/info";
  if (!base::makeDirectories(files) || !base::makeDirectories(info)) {
    return "Could not create the trash directory at " + trashDir + ".";
  }
  const base::FileDescriptor openInfo = openDirectoryToUse(info);
  if (!openInfo.valid()) return kNoRecord;
  const base::FileDescriptor openFiles = openDirectoryToUse(files);
  if (!openFiles.valid()) return std::strerror(errno);
  const base::FileLock lock = base::FileLock::ofDirectory(openInfo.get());
  Trashing trashing(item, recordedPath, openFiles.get(), openInfo.get());
  if (trashing.run()) return std::nullopt;
  return trashing.error();
}

}  // namespace

std::string nameInTrash(const std::string& name, int counter) {
  if (counter == 0) return name;
  const std::string inserted = "." + std::to_string(counter);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos || dot == 0) return name + inserted;
  return name.substr(0, dot) + inserted + name.substr(dot);
}

bool trashInto(const std::string& trashDir, const TrashItem& item, const std::string& recordedPath,
               std::string* error) {
  const std::optional<std::string> failure = failureOf(trashDir, item, recordedPath);
  if (failure && !failure->empty() && error) *error = *failure;
  return !failure;
}

}  // namespace app
