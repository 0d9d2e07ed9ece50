#include "bench/support/million_files.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>

#include "base/file_descriptor.h"

namespace bench {

namespace {

void check(bool fine, const std::string& what) {
  if (!fine) throw std::system_error(errno, std::generic_category(), what);
}

/// Lengths without content: a walk asks for sizes, and a million pages of content would be 4 GB of
/// memory.
void fill(const std::string& folder, int files, std::minstd_rand* random) {
  const base::FileDescriptor at(open(folder.c_str(), O_RDONLY | O_DIRECTORY));
  check(at.valid(), folder);
  static const char* const kEndings[] = {"txt", "cpp", "h", "png", "so", "json", "py", "log"};
  std::uniform_int_distribution<off_t> sizes(100, 3800);
  for (int i = 0; i < files; ++i) {
    const std::string name = "a file of work " + std::to_string(i) + "." + kEndings[i % 8];
    const base::FileDescriptor file(openat(at.get(), name.c_str(), O_WRONLY | O_CREAT, 0600));
    check(file.valid() && ftruncate(file.get(), sizes(*random)) == 0, name);
  }
}

}  // namespace

MillionFiles::MillionFiles(Shape shape, int thousands) {
  const bool shared = access("/dev/shm", W_OK) == 0;
  path_ = shared ? "/dev/shm/heapgauge-bench-XXXXXX" : "/tmp/heapgauge-bench-XXXXXX";
  check(mkdtemp(path_.data()) != nullptr, path_);
  std::fprintf(stderr, "making %d thousand files below %s\n", thousands, path_.c_str());
  std::minstd_rand random(1);  // sizes in no order, and the same in every run
  if (shape == Shape::OneFolder) {
    fill(path_, thousands * 1000, &random);
    return;
  }
  for (int a = 0; a < thousands / 100; ++a) {
    for (int b = 0; b < 100; ++b) {
      for (int c = 0; c < 10; ++c) {
        const std::string folder = path_ + "/area " + std::to_string(a) + "/project " +
                                   std::to_string(b) + "/part " + std::to_string(c);
        std::filesystem::create_directories(folder);
        fill(folder, 100, &random);
      }
    }
  }
}

MillionFiles::~MillionFiles() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace bench
