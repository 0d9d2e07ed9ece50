#include "tests/support/x_server_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <stdexcept>

namespace test {

namespace {

constexpr int kStartTimeoutMs = 30000;

/// The number that the server writes, with a newline, once it takes connections; empty when it
/// ended instead.
std::string readDisplayNumber(int displayPipe) {
  std::string number;
  pollfd readable{displayPipe, POLLIN, 0};
  while (poll(&readable, 1, kStartTimeoutMs) > 0) {
    char c = 0;
    if (read(displayPipe, &c, 1) != 1) break;
    if (c == '\n') return number;
    number += c;
  }
  return {};
}

/// In the child, between fork and exec: only calls that are safe after a fork among threads.
[[noreturn]] void becomeServer(char** arguments, int displayPipe, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(127);  // ended before the line above
  fcntl(displayPipe, F_SETFD, 0);
  const int null = open("/dev/null", O_RDWR);
  dup2(null, STDOUT_FILENO);
  dup2(null, STDERR_FILENO);  // it reports keyboard symbols that it does not know
  execvp(arguments[0], arguments);
  _exit(127);
}

/// The process of the server, which writes its display number to `displayPipe`.
pid_t start(std::vector<std::string> arguments, int displayPipe) {
  arguments.insert(arguments.end(), {"-displayfd", std::to_string(displayPipe)});
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const pid_t parent = getpid();
  const pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("no process for the X server");
  if (pid == 0) becomeServer(pointers.data(), displayPipe, parent);
  return pid;
}

}  // namespace

XServerProcess::XServerProcess(const std::vector<std::string>& arguments)
    : arguments_(arguments), owner_(getpid()) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the X server");
  pid_ = start(arguments, ends[1]);
  close(ends[1]);
  const std::string number = readDisplayNumber(ends[0]);
  close(ends[0]);
  display_ = ":" + number;
  try {
    if (number.empty()) throw std::runtime_error("Xvfb did not start; is it installed?");
    asNew_.emplace(display_, pid_);
  } catch (...) {
    end();
    throw;
  }
}

XServerProcess::~XServerProcess() { end(); }

std::size_t XServerProcess::memory() const {
  std::ifstream statm("/proc/" + std::to_string(pid_) + "/statm");
  std::size_t pages = 0;
  if (!(statm >> pages)) throw std::runtime_error("the X server tells no size");
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

bool XServerProcess::becomesAsNew() const { return asNew_->restore(); }

void XServerProcess::end() const {
  if (getpid() != owner_) return;
  kill(pid_, SIGTERM);
  waitpid(pid_, nullptr, 0);
}

}  // namespace test
