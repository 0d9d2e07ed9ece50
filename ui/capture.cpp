#include "ui/capture.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

namespace ui {

namespace {

unsigned char sampleOf(unsigned long pixel, const PixelChannel& channel) {
  return static_cast<unsigned char>((pixel & channel.mask) >> channel.shift());
}

}  // namespace

bool writePpm(const std::string& path, int width, int height, const PixelFormat& format,
              const std::function<unsigned long(int x, int y)>& pixelAt) {
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "wb"));
  if (!file) return false;

  std::fprintf(file.get(), "P6\n%d %d\n255\n", width, height);
  std::vector<unsigned char> row(static_cast<std::size_t>(width) * 3);
  for (int y = 0; y < height; ++y) {
    auto sample = row.begin();
    for (int x = 0; x < width; ++x) {
      const unsigned long pixel = pixelAt(x, y);
      *sample++ = sampleOf(pixel, format.red);
      *sample++ = sampleOf(pixel, format.green);
      *sample++ = sampleOf(pixel, format.blue);
    }
    std::fwrite(row.data(), 1, row.size(), file.get());
  }
  return true;
}

}  // namespace ui
