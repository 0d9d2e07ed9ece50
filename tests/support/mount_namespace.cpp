#include "tests/support/mount_namespace.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace test {

namespace {

void writeTo(const char* path, const std::string& text) {
  const int fd = open(path, O_WRONLY | O_CLOEXEC);
  if (fd < 0) return;
  [[maybe_unused]] const ssize_t written = write(fd, text.data(), text.size());
  close(fd);
}

bool enterNamespace() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) return false;
  if (user != 0) {
    writeTo("/proc/self/setgroups", "deny");
    writeTo("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    writeTo("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
  }
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace

std::string inPrivateMounts(const std::function<std::string()>& body) {
  int ends[2];
  if (pipe(ends) != 0) return "cannot make a pipe";
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    const std::string outcome =
        enterNamespace() ? body()
                         : std::string("cannot enter a mount namespace: ") + strerror(errno);
    [[maybe_unused]] const ssize_t written = write(ends[1], outcome.data(), outcome.size());
    _exit(0);
  }
  close(ends[1]);
  std::string outcome;
  char buffer[4096];
  for (ssize_t got = 0; (got = read(ends[0], buffer, sizeof buffer)) > 0;) {
    outcome.append(buffer, static_cast<std::size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0 && outcome.empty())
    outcome = "the child ended with status " + std::to_string(status);
  return outcome;
}

}  // namespace test
