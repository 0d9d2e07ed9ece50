// Writes the program's icon at another size: scale_icon INPUT.png SIZE OUTPUT.png. A tool of the
// build, so that it needs no other program than the compiler and no other library than libpng,
// which Heap Gauge uses anyway.
//
// A pixel is the mean of the area that it covers, by linear light and weighted by alpha, which is
// what libpng delivers on request. Mixing the values as they are stored would darken the edges
// between the blocks, and the colour of an invisible pixel would show.

#include <png.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr std::size_t kChannels = 4;
constexpr int kLargestSide = 4096;

/// Square, by linear light, premultiplied, row by row.
struct Picture {
  std::size_t side = 0;
  std::vector<png_uint_16> channels;
};

[[noreturn]] void fail(const char* file, const char* reason) {
  std::fprintf(stderr, "scale_icon: %s: %s\n", file, reason);
  std::exit(1);
}

png_image emptyImage() {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  return image;
}

Picture readPicture(const char* file) {
  png_image image = emptyImage();
  if (!png_image_begin_read_from_file(&image, file)) fail(file, image.message);
  if (image.width != image.height || image.width > kLargestSide) fail(file, "is no square icon");
  image.format = PNG_FORMAT_LINEAR_RGB_ALPHA;
  Picture picture{image.width, std::vector<png_uint_16>(kChannels * image.width * image.height)};
  if (!png_image_finish_read(&image, nullptr, picture.channels.data(), 0, nullptr)) {
    fail(file, image.message);
  }
  return picture;
}

void writePicture(const Picture& picture, const char* file) {
  png_image image = emptyImage();
  image.width = image.height = static_cast<png_uint_32>(picture.side);
  image.format = PNG_FORMAT_LINEAR_RGB_ALPHA;
  constexpr int kTo8Bit = 1;
  if (!png_image_write_to_file(&image, file, kTo8Bit, picture.channels.data(), 0, nullptr)) {
    fail(file, image.message);
  }
}

/// How much of the source's pixel `from` the pixel `to` covers, in parts of a pixel of the source
/// that is `side` parts wide; whole numbers, so that every machine makes the same icons.
std::size_t coverage(std::size_t from, std::size_t fromSide, std::size_t to, std::size_t side) {
  const std::size_t begin = std::max(from * side, to * fromSide);
  const std::size_t end = std::min((from + 1) * side, (to + 1) * fromSide);
  return end > begin ? end - begin : 0;
}

std::array<png_uint_16, kChannels> meanAt(const Picture& from, std::size_t side, std::size_t x,
                                          std::size_t y) {
  std::array<std::uint64_t, kChannels> sums{};
  for (std::size_t row = y * from.side / side; row * side < (y + 1) * from.side; ++row) {
    const std::size_t height = coverage(row, from.side, y, side);
    for (std::size_t column = x * from.side / side; column * side < (x + 1) * from.side; ++column) {
      const std::size_t area = height * coverage(column, from.side, x, side);
      const png_uint_16* pixel = &from.channels[kChannels * (row * from.side + column)];
      for (std::size_t i = 0; i < kChannels; ++i) sums[i] += std::uint64_t{area} * pixel[i];
    }
  }
  const std::uint64_t whole = std::uint64_t{from.side} * from.side;
  std::array<png_uint_16, kChannels> mean{};
  for (std::size_t i = 0; i < kChannels; ++i) {
    mean[i] = static_cast<png_uint_16>((sums[i] + whole / 2) / whole);
  }
  return mean;
}

Picture scaled(const Picture& from, std::size_t side) {
  Picture to{side, {}};
  to.channels.reserve(kChannels * side * side);
  for (std::size_t y = 0; y < side; ++y) {
    for (std::size_t x = 0; x < side; ++x) {
      const auto mean = meanAt(from, side, x, y);
      to.channels.insert(to.channels.end(), mean.begin(), mean.end());
    }
  }
  return to;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) fail("usage", "scale_icon INPUT.png SIZE OUTPUT.png");
  const int side = std::atoi(argv[2]);
  if (side < 1 || side > kLargestSide) fail(argv[2], "is no size of an icon");
  writePicture(scaled(readPicture(argv[1]), static_cast<std::size_t>(side)), argv[3]);
  return 0;
}
