#include "app/actions/trash_record.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "base/file_descriptor.h"

namespace app {

namespace {

constexpr std::string_view kSuffix = ".trashinfo";
/// A record holds a path and a date. What is larger is none, and not worth keeping in memory.
constexpr off_t kLargestRecord = 1024 * 1024;
/// A record is a file of its own: a link is not followed to a file elsewhere, and nobody at the
/// other end of a FIFO is waited for.
constexpr int kOpenFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

// Not isalnum(), which goes by the locale.
bool staysAsItIs(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || std::string_view("-./_~").find(byte) != std::string::npos;
}

std::string localTime(std::time_t time) {
  std::tm local{};
  ::tzset();  // the place may have changed since the program was started
  ::localtime_r(&time, &local);
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local)};
}

bool isSmallFile(int fd) {
  struct stat status {};
  return ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= kLargestRecord;
}

}  // namespace

std::string percentEncoded(std::string_view path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char byte : path) {
    if (staysAsItIs(byte)) {
      encoded += byte;
    } else {
      const auto value = static_cast<unsigned char>(byte);
      encoded.append({'%', kDigits[value / 16u], kDigits[value % 16u]});
    }
  }
  return encoded;
}

std::string recordText(std::string_view recordedPath, std::time_t deletedAt) {
  return "[Trash Info]\nPath=" + percentEncoded(recordedPath) +
         "\nDeletionDate=" + localTime(deletedAt) + "\n";
}

TrashRecord::TrashRecord(int infoDirectory, const std::string& itemName)
    : infoDirectory_(infoDirectory), fileName_(std::string(itemName).append(kSuffix)) {}

bool TrashRecord::write(std::string text) {
  before_ = content();
  written_ = std::move(text);
  const base::WriteOutcome outcome = replace(written_);
  if (outcome == base::WriteOutcome::Incomplete) restore();
  return outcome == base::WriteOutcome::Written;
}

void TrashRecord::takeBack() {
  if (content() == written_) restore();
}

std::optional<std::string> TrashRecord::content() const {
  const base::FileDescriptor file(
      ::openat(infoDirectory_, fileName_.c_str(), O_RDONLY | kOpenFlags));
  if (!file.valid() || !isSmallFile(file.get())) return std::nullopt;
  return base::readRest(file.get());
}

base::WriteOutcome TrashRecord::replace(std::string_view text) const {
  base::FileDescriptor file(
      ::openat(infoDirectory_, fileName_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | kOpenFlags, 0600));
  if (!file.valid()) return base::WriteOutcome::NotOpened;
  const bool written = base::writeAll(file.get(), text);
  // A network file system may report only at the close that it had no room.
  const bool closed = file.close();
  return written && closed ? base::WriteOutcome::Written : base::WriteOutcome::Incomplete;
}

void TrashRecord::restore() const {
  if (before_) {
    replace(*before_);
  } else {
    ::unlinkat(infoDirectory_, fileName_.c_str(), 0);
  }
}

}  // namespace app
