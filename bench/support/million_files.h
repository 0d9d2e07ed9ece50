#pragma once

#include <cstdint>
#include <string>

namespace bench {

/// A million small files, or as many as are asked for, in a directory of its own, in tmpfs where
/// there is one, removed at the end of the scope.
class MillionFiles {
 public:
  enum class Shape {
    /// Ten folders of a hundred folders of ten folders hold a hundred files each. For another
    /// number
    /// of files there are more or fewer of the first ones.
    Project,
    OneFolder,
  };

  /// `thousands` of files; a multiple of a hundred.
  explicit MillionFiles(Shape shape = Shape::Project, int thousands = 1000);
  ~MillionFiles();
  MillionFiles(const MillionFiles&) = delete;
  MillionFiles& operator=(const MillionFiles&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace bench
