#include "bench/support/quiet_run.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace bench {

namespace {

/// 0, or the error. With the C library's posix_spawnp a missing program is one.
int spawn(const std::vector<std::string>& command, pid_t* child) {
  std::vector<std::string> copies = command;
  std::vector<char*> argv;
  argv.reserve(copies.size() + 1);
  for (std::string& word : copies) argv.push_back(word.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, fd, "/dev/null", O_RDWR, 0);
  }
  const int error = posix_spawnp(child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error;
}

}  // namespace

Ending runQuietly(const std::vector<std::string>& command) {
  pid_t child = -1;
  const int error = spawn(command, &child);
  if (error == ENOENT) return Ending::NotInstalled;
  if (error != 0) throw std::system_error(error, std::generic_category(), command[0]);
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waitpid");
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Ending::Success : Ending::Failure;
}

}  // namespace bench
