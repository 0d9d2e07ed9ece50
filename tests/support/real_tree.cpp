#include "tests/support/real_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "base/file_descriptor.h"
#include "tests/support/temp_directory.h"

namespace test {

namespace {
void check(bool fine, const char* what) {
  if (!fine) throw std::system_error(errno, std::generic_category(), what);
}
}  // namespace

void makeDeepTree(const std::string& path, int depth, std::uint64_t bytes) {
  base::FileDescriptor at(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  check(at.valid(), "open");
  for (int i = 0; i < depth; ++i) {
    check(mkdirat(at.get(), "d", 0700) == 0, "mkdirat");
    at = base::FileDescriptor(openat(at.get(), "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    check(at.valid(), "openat");
  }
  const base::FileDescriptor file(openat(at.get(), "bottom", O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  check(ftruncate(file.get(), static_cast<off_t>(bytes)) == 0, "ftruncate");
}

int makeBushyTree(const std::string& path, unsigned seed, int folders, int filesPerFolder) {
  static const char* const kEndings[] = {".txt", ".mp3", ".so", "", ".tar.gz", ".py"};
  std::mt19937 random(seed);
  std::vector<std::string> all = {path};
  int files = 0;
  for (int i = 0; i < folders; ++i) {
    const std::string folder = all[random() % all.size()] + "/folder" + std::to_string(i);
    makeDirectory(folder);
    all.push_back(folder);
    for (int f = static_cast<int>(random() % static_cast<unsigned>(2 * filesPerFolder)); f > 0;
         --f) {
      const std::string name = "/file" + std::to_string(f) + kEndings[random() % 6];
      writeFile(folder + name, std::string(random() % 9000, 'x'));
      ++files;
    }
  }
  return files;
}

}  // namespace test
