#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace test {

/// A program started by the test, looked up on PATH; it ends with the scope.
class Child {
 public:
  /// Standard input, output and error are files; without a name for its errors they go where the
  /// test's go. Throws std::system_error when it cannot be started.
  explicit Child(const std::vector<std::string>& arguments, const std::string& input = "/dev/null",
                 const std::string& output = "/dev/null", const std::string& errors = {});
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Its exit status, -1 for death by a signal; nothing while it runs. Does not wait.
  std::optional<int> exitStatus();
  /// Waits for its end, `seconds` at most; nothing when it still runs then.
  std::optional<int> wait(int seconds = 60);
  pid_t pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
  std::optional<int> status_;
};

}  // namespace test
