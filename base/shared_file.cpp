#include "base/shared_file.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "base/file_descriptor.h"
#include "base/file_lock.h"
#include "base/files.h"

namespace base {

SharedFile::SharedFile(std::string path, Incomplete incomplete)
    : path_(std::move(path)), incomplete_(incomplete) {}

std::optional<std::string> SharedFile::read() const {
  std::optional<std::string> text = readWholeFile(path_, kLargest);
  if (!text && errno == ENOENT) text.emplace();
  return text;
}

bool SharedFile::change(const std::function<std::string(const std::string&)>& edit) const {
  // Open for writing, since some network file systems lock no others; O_NONBLOCK for a FIFO that
  // lies there.
  const std::string lockPath = path_ + ".lock";
  const FileLock lock(FileDescriptor(
      ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, 0600)));
  if (!lock.held() && !lock.unknownHere()) return false;
  const std::optional<std::string> text = read();
  return text && replace(edit(*text));
}

bool SharedFile::replace(const std::string& text) const {
  if (text.size() > kLargest) return false;
  const std::string temporary = path_ + ".tmp";
  switch (writeWholeFile(temporary, text)) {
    case WriteOutcome::NotOpened:
      return false;
    case WriteOutcome::Incomplete:
      if (incomplete_ == Incomplete::IsRemoved) std::remove(temporary.c_str());
      return false;
    case WriteOutcome::Written:
      break;
  }
  if (std::rename(temporary.c_str(), path_.c_str()) == 0) return true;
  std::remove(temporary.c_str());
  return false;
}

}  // namespace base
