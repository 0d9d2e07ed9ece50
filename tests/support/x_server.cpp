#include "tests/support/x_server.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
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

std::vector<std::string> argumentsFor(const XServerOptions& options, int displayPipe) {
  std::vector<std::string> arguments = {
      "Xvfb", "-displayfd", std::to_string(displayPipe), "-screen", "0",
      std::to_string(options.width) + "x" + std::to_string(options.height) + "x" +
          std::to_string(options.depth),
      "-dpi", std::to_string(options.dpi), "-nolisten", "tcp",
      // Else the server forgets the root's properties when its last client leaves.
      "-noreset"};
  arguments.insert(arguments.end(), options.extraArguments.begin(), options.extraArguments.end());
  return arguments;
}

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

}  // namespace

XServer::XServer(const XServerOptions& options) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the X server");
  start(argumentsFor(options, ends[1]), ends[1]);
  close(ends[1]);
  const std::string number = readDisplayNumber(ends[0]);
  close(ends[0]);
  if (number.empty()) {
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
    throw std::runtime_error("Xvfb did not start; is it installed?");
  }
  display_ = ":" + number;
  environment_.set("DISPLAY", display_);
  if (!options.resources.empty()) publishResources(options.resources);
}

std::size_t XServer::memory() const {
  std::ifstream statm("/proc/" + std::to_string(pid_) + "/statm");
  std::size_t pages = 0;
  if (!(statm >> pages)) throw std::runtime_error("the X server tells no size");
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

XServer::~XServer() {
  kill(pid_, SIGTERM);
  waitpid(pid_, nullptr, 0);
}

void XServer::start(const std::vector<std::string>& arguments, int displayPipe) {
  std::vector<std::string> copies = arguments;
  std::vector<char*> pointers;
  for (std::string& copy : copies) pointers.push_back(copy.data());
  pointers.push_back(nullptr);
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no process for the X server");
  if (pid_ == 0) becomeServer(pointers.data(), displayPipe, parent);
}

void XServer::publishResources(const std::string& resources) const {
  Display* display = XOpenDisplay(display_.c_str());
  if (!display) throw std::runtime_error("the X server takes no connections");
  XChangeProperty(display, DefaultRootWindow(display), XA_RESOURCE_MANAGER, XA_STRING, 8,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(resources.data()),
                  static_cast<int>(resources.size()));
  XCloseDisplay(display);
}

}  // namespace test
