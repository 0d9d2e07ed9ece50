#pragma once

#include <string>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"

namespace test {

/// A directory of programs, the first one on PATH for the scope or all there is of it.
class FakePrograms {
 public:
  enum class RestOfPath { Kept, Hidden };
  explicit FakePrograms(RestOfPath rest = RestOfPath::Kept);

  /// Adds a program called `name` that runs the shell's `lines`.
  void add(const std::string& name, const std::string& lines);
  /// Adds one that writes its arguments down, for `argumentsOf`.
  void addRecorder(const std::string& name);
  /// What the recorder `name` was started with, without its own name. Waits for it, and throws
  /// std::runtime_error when it has not been started after twenty seconds.
  std::vector<std::string> argumentsOf(const std::string& name) const;
  /// Whether the recorder `name` has written anything down by now.
  bool wasStarted(const std::string& name) const;

  std::string operator/(std::string_view name) const { return directory_ / name; }

 private:
  TempDirectory directory_;
  ScopedEnvironment environment_;
};

}  // namespace test
