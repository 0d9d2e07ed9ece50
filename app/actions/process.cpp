#include "app/actions/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include "base/file_descriptor.h"

// What runs between fork and exec is a copy of one thread of many: a lock that another one held, as
// the allocator's, stays locked for ever. Nothing there may allocate, so all that a child needs is
// laid out before, and the address sanitizer, which allocates before each call that does not
// return, keeps out.
#define HEAPGAUGE_IN_FORKED_CHILD [[gnu::no_sanitize_address]]

namespace app {

namespace {

constexpr int kCannotRun = 127;  // as a shell says it
constexpr std::size_t kChunk = 4096;
constexpr std::size_t kMostCaptured = 1024 * 1024;

/// What execvp() takes: a null-terminated array of strings it may write to.
class Arguments {
 public:
  explicit Arguments(const std::vector<std::string>& argv) : texts_(argv) {
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }

  HEAPGAUGE_IN_FORKED_CHILD [[noreturn]] void run() const {
    ::execvp(pointers_[0], pointers_.data());
    ::_exit(kCannotRun);
  }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

/// What a thread of ours blocks, and what was ignored for us, survives exec.
void useDefaultSignals() {
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  ::sigaction(SIGPIPE, &usual, nullptr);
  ::sigaction(SIGCHLD, &usual, nullptr);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

void closeAllButStandard() { ::closefrom(STDERR_FILENO + 1); }

/// Makes `target` another name of `fd`, one that exec keeps.
void putAt(int fd, int target) {
  if (fd == target) {
    ::fcntl(fd, F_SETFD, 0);
  } else {
    ::dup2(fd, target);
  }
}

HEAPGAUGE_IN_FORKED_CHILD [[noreturn]] void runDetached(const Arguments& arguments) {
  ::setsid();  // no Ctrl-C in the terminal we were started from, and no end of it
  const int null = ::open("/dev/null", O_RDWR);
  if (null >= 0) {
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) putAt(null, standard);
  }
  closeAllButStandard();
  useDefaultSignals();
  arguments.run();
}

HEAPGAUGE_IN_FORKED_CHILD [[noreturn]] void runCaptured(const Arguments& arguments, int output) {
  putAt(output, STDOUT_FILENO);
  const int null = ::open("/dev/null", O_WRONLY);
  if (null >= 0) putAt(null, STDERR_FILENO);
  closeAllButStandard();
  useDefaultSignals();
  arguments.run();
}

/// Starts the child that runs `arguments` with its output to `output`; negative when it cannot.
HEAPGAUGE_IN_FORKED_CHILD pid_t forkCaptured(const Arguments& arguments, int output) {
  const pid_t child = ::fork();
  if (child == 0) runCaptured(arguments, output);
  return child;
}

/// Starts the child that starts the program and ends at once, so that the program falls to init,
/// which waits for it; negative when it cannot.
HEAPGAUGE_IN_FORKED_CHILD pid_t forkDetached(const Arguments& arguments) {
  const pid_t between = ::fork();
  if (between == 0) {
    if (::fork() != 0) ::_exit(0);
    runDetached(arguments);
  }
  return between;
}

/// Waits for the end of `child`; its status, or nothing that is a success when that is unknown.
int statusOf(pid_t child) {
  int status = 0;
  pid_t ended = 0;
  do {
    ended = ::waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  return ended == child ? status : -1;
}

std::string readUpToTheMost(int fd) {
  std::string text;
  std::array<char, kChunk> chunk;
  while (text.size() <= kMostCaptured) {
    const ssize_t got = ::read(fd, chunk.data(), chunk.size());
    if (got <= 0) break;
    text.append(chunk.data(), static_cast<std::size_t>(got));
  }
  return text;
}

/// The end of a program that wrote on after we had stopped reading; a shell tells of the signal
/// that ended its last command by a number above 128.
bool endedUnheard(int status) {
  constexpr int kShellSignalBase = 128;
  if (WIFSIGNALED(status)) return WTERMSIG(status) == SIGPIPE;
  return WIFEXITED(status) && WEXITSTATUS(status) == kShellSignalBase + SIGPIPE;
}

bool isExecutableFile(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         ::access(path.c_str(), X_OK) == 0;
}

std::string_view searchPath() {
  const char* path = std::getenv("PATH");
  return path ? path : "/bin:/usr/bin";  // what execvp() takes for a PATH that is not set
}

}  // namespace

bool spawnDetached(const std::vector<std::string>& argv) {
  if (argv.empty()) return false;
  const pid_t between = forkDetached(Arguments(argv));
  if (between < 0) return false;
  statusOf(between);
  return true;
}

std::string runCapture(const std::vector<std::string>& argv) {
  std::array<int, 2> ends;
  // O_CLOEXEC: a program that another thread starts now would keep the pipe open.
  if (argv.empty() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  base::FileDescriptor readEnd(ends[0]);
  base::FileDescriptor writeEnd(ends[1]);
  const pid_t child = forkCaptured(Arguments(argv), writeEnd.get());
  if (child < 0) return {};
  writeEnd.close();
  const std::string text = readUpToTheMost(readEnd.get());
  const bool cutOff = text.size() > kMostCaptured;
  readEnd.close();
  const int status = statusOf(child);
  return status == 0 || (cutOff && endedUnheard(status)) ? text : std::string();
}

bool isOnPath(const std::string& program) {
  if (program.empty()) return false;
  if (program.find('/') != std::string::npos) return isExecutableFile(program);
  std::string_view rest = searchPath();
  while (true) {
    const std::size_t colon = rest.find(':');
    const std::string directory(rest.substr(0, colon));
    // An empty element is the working directory.
    if (isExecutableFile((directory.empty() ? "." : directory) + "/" + program)) return true;
    if (colon == std::string_view::npos) return false;
    rest.remove_prefix(colon + 1);
  }
}

}  // namespace app
