#include "ui/icon_decoder.h"

#include <png.h>

#include <csetjmp>
#include <cstdint>
#include <cstring>

// libpng reports an error by a long jump to the last setjmp, past every frame in between. A frame
// that it passes must hold nothing with a destructor: what does lives in IconReader, whose two
// steps do the jumping and keep only plain values.

namespace ui {

namespace {

constexpr png_uint_32 kMaxSide = 4096;
constexpr std::size_t kBytesPerPixel = 4;

[[noreturn]] void onError(png_structp png, png_const_charp /*message*/) { png_longjmp(png, 1); }

void onWarning(png_structp /*png*/, png_const_charp /*message*/) {}

/// libpng's read function; its user data is the span of what is left.
void readBytes(png_structp png, png_bytep to, std::size_t count) {
  auto& rest = *static_cast<std::span<const std::byte>*>(png_get_io_ptr(png));
  if (count > rest.size()) png_error(png, "read past the end of the embedded icon");
  std::memcpy(to, rest.data(), count);
  rest = rest.subspan(count);
}

/// One decoding. Call `readHeader`, then `readRows`; each returns false when it fails, after which
/// nothing more may be called.
class IconReader {
 public:
  explicit IconReader(std::span<const std::byte> bytes) : rest_(bytes) {}
  ~IconReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  IconReader(const IconReader&) = delete;
  IconReader& operator=(const IconReader&) = delete;

  /// Leaves the size, and libpng set to deliver 8-bit RGBA.
  bool readHeader();
  bool readRows();
  IconImage image() const;

 private:
  void askForRgba();

  std::span<const std::byte> rest_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  png_uint_32 width_ = 0;
  png_uint_32 height_ = 0;
  std::vector<png_byte> rgba_;
  std::vector<png_bytep> rows_;
};

void IconReader::askForRgba() {
  const int colourType = png_get_color_type(png_, info_);
  const int bitDepth = png_get_bit_depth(png_, info_);
  const bool isGrey = (colourType & PNG_COLOR_MASK_COLOR) == 0;
  const bool hasAlpha = (colourType & PNG_COLOR_MASK_ALPHA) != 0;
  if (bitDepth == 16) png_set_strip_16(png_);
  if (colourType == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png_);
  if (isGrey && bitDepth < 8) png_set_expand_gray_1_2_4_to_8(png_);
  if (png_get_valid(png_, info_, PNG_INFO_tRNS)) png_set_tRNS_to_alpha(png_);
  if (isGrey) png_set_gray_to_rgb(png_);
  // Passes over pixels that got their alpha from a tRNS chunk.
  if (!hasAlpha) png_set_filler(png_, 0xFF, PNG_FILLER_AFTER);
  // Not left to png_read_image, which takes it for an oversight once the update is done.
  png_set_interlace_handling(png_);
  png_read_update_info(png_, info_);
}

bool IconReader::readHeader() {
  png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning);
  if (!png_) return false;
  info_ = png_create_info_struct(png_);
  if (!info_) return false;
  if (setjmp(png_jmpbuf(png_))) return false;
  png_set_read_fn(png_, &rest_, readBytes);
  png_read_info(png_, info_);
  width_ = png_get_image_width(png_, info_);
  height_ = png_get_image_height(png_, info_);
  askForRgba();
  return width_ >= 1 && width_ <= kMaxSide && height_ >= 1 && height_ <= kMaxSide;
}

bool IconReader::readRows() {
  const std::size_t rowBytes = width_ * kBytesPerPixel;
  if (png_get_rowbytes(png_, info_) != rowBytes) return false;
  rgba_.resize(rowBytes * height_);
  rows_.resize(height_);
  for (std::size_t y = 0; y < height_; ++y) rows_[y] = rgba_.data() + y * rowBytes;
  if (setjmp(png_jmpbuf(png_))) return false;
  png_read_image(png_, rows_.data());
  return true;
}

IconImage IconReader::image() const {
  IconImage image{static_cast<int>(width_), static_cast<int>(height_), {}};
  image.pixels.reserve(rgba_.size() / kBytesPerPixel);
  for (std::size_t i = 0; i < rgba_.size(); i += kBytesPerPixel) {
    const auto channel = [&](std::size_t at) { return std::uint32_t{rgba_[i + at]}; };
    image.pixels.push_back(channel(3) << 24 | channel(0) << 16 | channel(1) << 8 | channel(2));
  }
  return image;
}

}  // namespace

std::optional<IconImage> decodeIcon(std::span<const std::byte> png) {
  IconReader reader(png);
  if (!reader.readHeader() || !reader.readRows()) return std::nullopt;
  return reader.image();
}

}  // namespace ui
