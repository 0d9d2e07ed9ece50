#include "ui/wake_pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>

namespace ui {

WakePipe::WakePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC) != 0) return;
  readEnd_ = ends[0];
  writeEnd_ = ends[1];
}

WakePipe::~WakePipe() {
  if (readEnd_ >= 0) close(readEnd_);
  if (writeEnd_ >= 0) close(writeEnd_);
}

void WakePipe::wake() const {
  if (writeEnd_ < 0) return;
  const unsigned char one = 1;
  [[maybe_unused]] const ssize_t written = write(writeEnd_, &one, 1);
}

void WakePipe::drain() const {
  std::array<unsigned char, 64> bytes;
  while (read(readEnd_, bytes.data(), bytes.size()) >= 1) {
  }
}

}  // namespace ui
