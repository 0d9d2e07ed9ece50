#include "tests/support/child.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <system_error>
#include <thread>

namespace test {

Child::Child(const std::vector<std::string>& arguments, const std::string& input,
             const std::string& output, const std::string& errors) {
  std::vector<std::string> copies = arguments;
  std::vector<char*> pointers;
  for (std::string& copy : copies) pointers.push_back(copy.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (!errors.empty()) {
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
  }
  const int error = posix_spawnp(&pid_, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), arguments[0]);
}

Child::~Child() {
  if (exitStatus()) return;
  kill(pid_, SIGTERM);
  waitpid(pid_, nullptr, 0);
}

std::optional<int> Child::wait(int seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  while (!exitStatus() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(
        std::chrono::milliseconds(5));  // between two looks, not for the child
  }
  return exitStatus();
}

std::optional<int> Child::exitStatus() {
  int status = 0;
  if (!status_ && waitpid(pid_, &status, WNOHANG) == pid_) {
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  return status_;
}

}  // namespace test
