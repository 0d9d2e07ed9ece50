#include "ui/capture.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

namespace ui {

namespace {

/// Takes the low 8 bits of a channel out of pixels. A picture has a million of them, so where the
/// channel lies is found out once.
class Sampler {
 public:
  explicit Sampler(const PixelChannel& channel) : mask_(channel.mask), shift_(channel.shift()) {}
  unsigned char operator()(unsigned long pixel) const {
    return static_cast<unsigned char>((pixel & mask_) >> shift_);
  }

 private:
  const unsigned long mask_;
  const unsigned shift_;
};

}  // namespace

bool writePpm(const std::string& path, int width, int height, const PixelFormat& format,
              const std::function<unsigned long(int x, int y)>& pixelAt) {
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "wb"));
  if (!file) return false;

  std::fprintf(file.get(), "P6\n%d %d\n255\n", width, height);
  const Sampler red(format.red);
  const Sampler green(format.green);
  const Sampler blue(format.blue);
  std::vector<unsigned char> row(static_cast<std::size_t>(width) * 3);
  for (int y = 0; y < height; ++y) {
    unsigned char* sample = row.data();
    for (int x = 0; x < width; ++x) {
      const unsigned long pixel = pixelAt(x, y);
      *sample++ = red(pixel);
      *sample++ = green(pixel);
      *sample++ = blue(pixel);
    }
    std::fwrite(row.data(), 1, row.size(), file.get());
  }
  return true;
}

}  // namespace ui
