#include "base/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>

#include "base/file_descriptor.h"

namespace base {

namespace {
bool isRegularFile(int fd) {
  struct stat status {};
  return ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
}
}  // namespace

std::optional<std::string> readRest(int fd, std::size_t largest) {
  std::string content;
  std::array<char, 8192> buffer;
  while (true) {
    const ssize_t got = ::read(fd, buffer.data(), buffer.size());
    if (got == 0) return content;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (static_cast<std::size_t>(got) > largest - content.size()) {
      errno = EFBIG;
      return std::nullopt;
    }
    content.append(buffer.data(), static_cast<std::size_t>(got));
  }
}

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::optional<std::string> readWholeFile(const std::string& path, std::size_t largest) {
  // Opening a FIFO for reading waits for a writer unless O_NONBLOCK is set; on regular files the
  // flag does nothing.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file.valid()) return std::nullopt;
  if (!isRegularFile(file.get())) {
    errno = EINVAL;
    return std::nullopt;
  }
  std::optional<std::string> content = readRest(file.get(), largest);
  if (!content && errno == ENOENT) errno = EIO;  // whatever a file system says: there is a file
  return content;
}

WriteOutcome writeWholeFile(const std::string& path, std::string_view content) {
  // O_NONBLOCK: a FIFO that nobody reads is refused instead of waited for.
  FileDescriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, 0600));
  if (!file.valid()) return WriteOutcome::NotOpened;
  const bool written = writeAll(file.get(), content);
  // A network file system may report only at the close that it had no room.
  const bool closed = file.close();
  return written && closed ? WriteOutcome::Written : WriteOutcome::Incomplete;
}

}  // namespace base
