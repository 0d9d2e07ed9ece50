#include "tests/support/temp_directory.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

namespace test {

namespace fs = std::filesystem;

namespace {
[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}
}  // namespace

TempDirectory::TempDirectory(Place place) {
  const bool inMemory = place == Place::Memory && access("/dev/shm", W_OK) == 0;
  const char* parent = inMemory ? "/dev/shm" : std::getenv("TMPDIR");
  std::string pattern = std::string(parent && *parent ? parent : "/tmp") + "/heapgauge-test-XXXXXX";
  if (!mkdtemp(pattern.data())) fail(pattern);
  path_ = fs::canonical(pattern).string();
}

TempDirectory::~TempDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TempDirectory::operator/(std::string_view relative) const {
  return path_ + "/" + std::string(relative);
}

void writeFile(const std::string& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) {
    fs::create_directories(fs::path(path).parent_path());
    file.open(path, std::ios::binary | std::ios::trunc);
  }
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!file.flush()) fail(path);
}

void writeSparseFile(const std::string& path, std::uint64_t length) {
  writeFile(path);
  if (truncate(path.c_str(), static_cast<off_t>(length)) != 0) fail(path);
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) fail(path);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return std::move(bytes).str();
}

void makeDirectory(const std::string& path) { fs::create_directories(path); }

}  // namespace test
