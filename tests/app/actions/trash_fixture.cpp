#include "tests/app/actions/trash_fixture.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sstream>
#include <system_error>

#include "tests/support/mount_namespace.h"
#include "tests/support/temp_directory.h"

namespace test {

namespace {
std::string decoded(const std::string& text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      bytes += text[i];
    }
  }
  return bytes;
}
}  // namespace

bool exists(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

std::vector<std::string> namesIn(const std::string& directory) {
  std::vector<std::string> names;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(directory, missing)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string pathInRecord(const std::string& recordFile) {
  std::istringstream lines(readFile(recordFile));
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("Path=")) return decoded(line.substr(5));
  }
  return {};
}

void mountMemory(const std::string& path, const std::string& options) {
  if (mount("tmpfs", path.c_str(), "tmpfs", 0, options.c_str()) != 0) {
    throw std::system_error(errno, std::generic_category(), "mount " + path);
  }
}

void expectInPrivateMounts(const std::function<std::string()>& body) {
  const std::string outcome = inPrivateMounts(body);
  if (outcome.starts_with("cannot")) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "");
}

}  // namespace test
