#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace test {

/// A directory of a test's own, removed with all it holds at the end of the scope.
class TempDirectory {
 public:
  enum class Place {
    /// Below $TMPDIR or /tmp.
    Disk,
    /// In memory where there is /dev/shm: for trees whose making and removal would keep a disk
    /// busy for longer than the test takes.
    Memory,
  };

  explicit TempDirectory(Place place = Place::Disk);
  ~TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  const std::string& path() const { return path_; }
  /// The path of `relative` inside the directory.
  std::string operator/(std::string_view relative) const;

 private:
  std::string path_;
};

/// Creates the file with `content`, and missing directories on the way. Throws std::system_error.
void writeFile(const std::string& path, std::string_view content = {});
/// Creates a sparse file of `length` bytes.
void writeSparseFile(const std::string& path, std::uint64_t length);
/// The whole file; throws std::system_error when it cannot be read.
std::string readFile(const std::string& path);
/// As `mkdir -p`. Throws std::system_error.
void makeDirectory(const std::string& path);

}  // namespace test
