#pragma once

#include <unistd.h>

#include <utility>

namespace base {

/// Owns an open file descriptor and closes it at the end of its life. Negative means none.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  /// Takes `fd` over; a negative one, as a failed open() returns, makes an empty owner.
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
      close();
      fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
  }
  ~FileDescriptor() { close(); }

  bool valid() const { return fd_ >= 0; }
  int get() const { return fd_; }

  /// Closes now. False when the kernel reports that written data did not arrive; the descriptor is
  /// gone either way, and closing an empty owner succeeds.
  bool close() { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

 private:
  int fd_ = -1;
};

}  // namespace base
