#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test {

/// A picture as three bytes a pixel.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  // 0xRRGGBB, row by row

  std::uint32_t at(int x, int y) const;
  /// How many pixels have exactly this colour.
  long count(std::uint32_t rgb) const;
  /// The `w` x `h` pixels from (x, y) on, which lie inside, as a picture.
  Picture part(int x, int y, int w, int h) const;

  bool operator==(const Picture&) const = default;
};

/// Throws std::runtime_error unless the file is a whole binary PPM and nothing more.
Picture readPpm(const std::string& path);

}  // namespace test
