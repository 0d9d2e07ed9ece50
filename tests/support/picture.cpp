#include "tests/support/picture.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "tests/support/temp_directory.h"

namespace test {

std::uint32_t Picture::at(int x, int y) const {
  if (x < 0 || y < 0 || x >= width || y >= height) throw std::runtime_error("outside the picture");
  return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                static_cast<std::size_t>(x)];
}

long Picture::count(std::uint32_t rgb) const {
  return static_cast<long>(std::count(pixels.begin(), pixels.end(), rgb));
}

Picture Picture::part(int x, int y, int w, int h) const {
  Picture part{w, h, {}};
  for (int row = y; row < y + h; ++row) {
    for (int column = x; column < x + w; ++column) part.pixels.push_back(at(column, row));
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
  for (std::size_t i = header; i < bytes.size(); i += 3) {
    const auto byte = [&](std::size_t k) {
      return std::uint32_t{static_cast<unsigned char>(bytes[i + k])};
    };
    picture.pixels.push_back(byte(0) << 16 | byte(1) << 8 | byte(2));
  }
  return picture;
}

}  // namespace test
