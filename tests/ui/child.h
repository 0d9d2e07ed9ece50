#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace test {

/// A program started by the test, looked up on PATH; it ends with the scope.
class Child {
 public:
  /// Standard input and output are files, or /dev/null. Throws std::system_error when it cannot be
  /// started.
  explicit Child(const std::vector<std::string>& arguments, const std::string& input = "/dev/null",
                 const std::string& output = "/dev/null");
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Its exit status, -1 for death by a signal; nothing while it runs. Does not wait.
  std::optional<int> exitStatus();

 private:
  pid_t pid_ = -1;
  std::optional<int> status_;
};

}  // namespace test
