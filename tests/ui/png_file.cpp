#include "tests/ui/png_file.h"

#include <png.h>

namespace test {

namespace {

void append(png_structp png, png_bytep data, std::size_t count) {
  const auto* bytes = reinterpret_cast<const std::byte*>(data);
  auto& file = *static_cast<std::vector<std::byte>*>(png_get_io_ptr(png));
  file.insert(file.end(), bytes, bytes + count);
}

void setTransparency(png_structp png, png_infop info, const PngFile& file) {
  const auto& values = file.transparency;
  if (values.empty()) return;
  if (file.colourType == PNG_COLOR_TYPE_PALETTE) {
    const std::vector<png_byte> alphas(values.begin(), values.end());
    png_set_tRNS(png, info, alphas.data(), static_cast<int>(alphas.size()), nullptr);
    return;
  }
  png_color_16 colour{};
  if (file.colourType == PNG_COLOR_TYPE_GRAY) {
    colour.gray = values.at(0);
  } else {
    colour.red = values.at(0);
    colour.green = values.at(1);
    colour.blue = values.at(2);
  }
  png_set_tRNS(png, info, nullptr, 0, &colour);
}

void setHeader(png_structp png, png_infop info, const PngFile& file) {
  png_set_IHDR(png, info, static_cast<png_uint_32>(file.width),
               static_cast<png_uint_32>(file.height), file.bitDepth, file.colourType,
               file.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  std::vector<png_color> palette;
  for (const auto& [red, green, blue] : file.palette) palette.push_back({red, green, blue});
  if (!palette.empty()) png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
  setTransparency(png, info, file);
}

}  // namespace

std::vector<std::byte> makePng(const PngFile& file) {
  std::vector<std::byte> bytes;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(png, &bytes, append, nullptr);
  setHeader(png, info, file);
  png_write_info(png, info);
  const std::size_t rowBytes = file.rows.size() / static_cast<std::size_t>(file.height);
  std::vector<png_bytep> rows;
  for (std::size_t y = 0; y < static_cast<std::size_t>(file.height); ++y) {
    rows.push_back(const_cast<png_bytep>(file.rows.data()) + y * rowBytes);
  }
  png_write_image(png, rows.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return bytes;
}

}  // namespace test
