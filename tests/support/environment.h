#pragma once

#include <map>
#include <optional>
#include <string>

#include "tests/support/temp_directory.h"

namespace test {

/// Sets environment variables for a scope and puts the old values back. Not for use beside other
/// threads that read the environment.
class ScopedEnvironment {
 public:
  ScopedEnvironment() = default;
  ~ScopedEnvironment();
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  void set(const std::string& name, const std::string& value);
  void unset(const std::string& name);

 private:
  void remember(const std::string& name);
  std::map<std::string, std::optional<std::string>> saved_;
};

/// HOME and every XDG directory inside a temporary directory, so that nothing of the user's is
/// touched, none of the user's wishes for how windows look, and nobody who waits for a program to
/// start.
class PrivateHome {
 public:
  PrivateHome();
  /// What HOME is set to.
  const std::string& path() const { return directory_.path(); }

 private:
  TempDirectory directory_;
  ScopedEnvironment environment_;
};

}  // namespace test
