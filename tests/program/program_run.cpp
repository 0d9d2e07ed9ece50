#include "tests/program/program_run.h"

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

#include "tests/app/scan_end.h"
#include "tests/support/eventually.h"

namespace test {

namespace {
namespace fs = std::filesystem;
constexpr unsigned long kControl = 0xFFE3;
}  // namespace

std::vector<std::string> programWith(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), HEAPGAUGE_PROGRAM);
  return arguments;
}

Outcome::Outcome(const std::vector<std::string>& arguments) {
  const auto start = std::chrono::steady_clock::now();
  Child child(programWith(arguments), "/dev/null", dir / "out", dir / "errors");
  status = child.wait().value_or(-2);
  seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  output = readFile(dir / "out");
  errors = readFile(dir / "errors");
}

Running::Running(const std::vector<std::string>& arguments)
    : child_(programWith(arguments), "/dev/null", "/dev/null", dir_ / "errors"),
      window_(client_->shownWindow("Heapgauge")) {}

void Running::loseServer(const XServer& server) {
  client_.reset();
  kill(server.pid(), SIGKILL);
}

bool Running::hasOpen(const std::string& path) const {
  const fs::path descriptors = "/proc/" + std::to_string(child_.pid()) + "/fd";
  return std::ranges::any_of(fs::directory_iterator(descriptors), [&](const auto& descriptor) {
    std::error_code closed;  // since the folder was listed
    return fs::read_symlink(descriptor, closed) == path;
  });
}

std::pair<unsigned long, unsigned long> Running::leastSize() {
  const auto hints = client_->longProperty(window_, "WM_NORMAL_HINTS");
  return hints.size() < 7 ? std::pair(0ul, 0ul) : std::pair(hints[5], hints[6]);
}

bool Running::comesToTheEndOfItsScan() {
  const ScanEnd end = ScanEnd::find();
  return eventually([&] { return end.seenIn(pixel(end.x, end.y)); });
}

void Running::key(unsigned long keysym) {
  client_->focus(window_);
  client_->pressKey(keysym);
  client_->releaseKey(keysym);
}

void Running::ctrlKey(unsigned long keysym) {
  client_->focus(window_);
  client_->pressKey(kControl);
  key(keysym);
  client_->releaseKey(kControl);
}

void Running::click(int x, int y) {
  client_->movePointer(x, y);
  client_->pressButton(1);
  client_->releaseButton(1);
}

int Running::close() {
  client_->sendProtocol(window_, "WM_DELETE_WINDOW");
  return child_.wait().value_or(-2);
}

}  // namespace test
