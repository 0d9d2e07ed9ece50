#include "tests/support/picture.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "tests/support/temp_directory.h"

namespace test {

namespace {

/// The index of a pixel. Throws std::runtime_error outside the picture.
std::size_t indexIn(const Picture& picture, int x, int y) {
  if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) {
    throw std::runtime_error("outside the picture");
  }
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
         static_cast<std::size_t>(x);
}

}  // namespace

std::uint32_t Picture::at(int x, int y) const { return pixels[indexIn(*this, x, y)]; }

long Picture::count(std::uint32_t rgb) const {
  return static_cast<long>(std::count(pixels.begin(), pixels.end(), rgb));
}

Picture Picture::part(int x, int y, int w, int h) const {
  Picture part{w, h, {}};
  for (int row = y; row < y + h && w > 0; ++row) {
    const std::uint32_t* first = &pixels[indexIn(*this, x, row)];
    const std::uint32_t* last = &pixels[indexIn(*this, x + w - 1, row)];
    part.pixels.insert(part.pixels.end(), first, last + 1);
  }
  return part;
}

Picture readPpm(const std::string& path) {
  const std::string bytes = readFile(path);
  Picture picture;
  int headerLength = 0;
  if (std::sscanf(bytes.c_str(), "P6\n%d %d\n255%n", &picture.width, &picture.height,
                  &headerLength) != 2) {
    throw std::runtime_error("not a PPM");
  }
  const auto header = static_cast<std::size_t>(headerLength) + 1;
  const auto count =
      static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
  if (bytes.size() != header + count * 3) throw std::runtime_error("wrong length of a PPM");
  picture.pixels.resize(count);
  const auto* samples = reinterpret_cast<const unsigned char*>(bytes.data() + header);
  for (std::uint32_t& pixel : picture.pixels) {
    pixel = std::uint32_t{samples[0]} << 16 | std::uint32_t{samples[1]} << 8 | samples[2];
    samples += 3;
  }
  return picture;
}

}  // namespace test
