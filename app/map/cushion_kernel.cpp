// Four pixels at a time, in vectors of 128 bits, which every processor of the usual kinds has. The
// vectors are the compiler's own, so this is the one source for all of them; docs/decisions says
// what became of the wider ones.
//
// The exact pixel takes a square root and a division in double precision, where a vector holds only
// two numbers. So the vectors compute in single precision, with the gradients taken over from
// double, and bound the error. That the pixels are `shadePixel`'s all the same is shown here.
//
// Let u = 2^-24, the most that one operation in single precision is off by, relative to its result.
// Terms in u² and the errors in double precision are left out; the bounds have room for them.
//
//  1. Both gradients are off by u, their squares by 3u, and with two sums the square of the
//  normal's
//     length by 5u. Its root is off by 3.5u.
//  2. Each of the three terms gx·a, gy·a and b is off by at most 3u, and with two sums by 5u of its
//     size. The sizes add up to at most the length, as the light is a unit vector. So the numerator
//     is off by 5u of the length, and the cosine by 5u + 3.5u + u = 9.5u.
//  3. The factor, cosine · 0.832 + 0.208, is off by less than 12u. Taking 32u off it and
//  multiplying
//     the result by a channel round twice more, together by less than 3u of a whole channel. So for
//     low = factor - 32u the product of channel and `low` is at most the exact one, and for
//     high = low + 64u at least that.
//  4. Truncation is monotonic. Where both ends give the same whole channels, these are the pixel.
//     Where they differ, in two pixels of a thousand, `shadePixel` is asked.
//
// The ends of the range, with `low` clamped to [0.208, 1] and `high` = low + 64u:
//
//  5. Below: in the shadow, where the cosine is less than 0, the exact factor is 0.208, and in the
//     darkest light a trace more. `low` is then clamped, and all 256 channels give the same there
//     in single precision as in double: `shadowIsTheSame` tries them all. A brighter pixel for
//     which `low` is clamped has an exact factor above 0.208 and below `high`, so 4. holds for it
//     too.
//  6. Above: where `low` is clamped to 1 the exact factor is more than 1 and the pixel the colour
//     itself. Both ends give that, as 255 · (1 + 64u) is less than 256. Where only `high` is above
//     1 it gives the colour itself, which is the most that the exact pixel can be.
//  7. A gradient may be too large for single precision, or no number. Its square is then not below
//     `kSquareLimit`, and `shadePixel` is asked. One that is too small for single precision is off
//     by 2^-149, which is nothing beside the 1 and the b that it is added to.

#include "app/map/cushion_kernel.h"

#include <cmath>
#include <cstddef>
#include <cstring>

namespace app {

namespace {

constexpr int kLanes = 4;
using Floats [[gnu::vector_size(16)]] = float;
using Integers [[gnu::vector_size(16)]] = std::int32_t;
/// In two registers where one has 128 bits.
using Doubles [[gnu::vector_size(32)]] = double;

constexpr float kAcross = static_cast<float>(kLightAcross);
constexpr float kUp = static_cast<float>(kLightUp);

/// 32u.
constexpr float kFactorError = 0x1p-19F;
constexpr float kSquareLimit = 1e30F;

/// The shadow factor in single precision, just above it so that 125 × 0.208 is 26 as it is in
/// double.
constexpr float kDarkest = 0.20800002F;

constexpr bool shadowIsTheSame() {
  for (int channel = 0; channel < 256; ++channel) {
    const auto low = static_cast<int>(static_cast<float>(channel) * kDarkest);
    if (low != static_cast<int>(channel * kShadow)) return false;
    // The darkest lit pixel, which rounding leaves a trace above the shadow.
    if (low != static_cast<int>(channel * (kAmbient * kGain))) return false;
    // Not needed for the result, but whole blocks lie in the shadow.
    const float high = kDarkest + 2 * kFactorError;
    if (low != static_cast<int>(static_cast<float>(channel) * high)) return false;
  }
  return true;
}
static_assert(shadowIsTheSame());

// Each of these is used in several instances of one loop, which holds its constants in registers.
#define KERNEL_STEP [[gnu::always_inline]] inline

std::uint32_t scaled(std::uint32_t channel, double factor) {
  const double value = channel * factor;
  return value < 255 ? static_cast<std::uint32_t>(value) : 255;
}

struct Painter {
  const PaintJob& job;
  const MapImage& image;
  Floats red, green, blue;
};

KERNEL_STEP Floats channel(std::uint32_t colour, int shift) {
  return Floats{} + static_cast<float>(colour >> shift & 255);
}

KERNEL_STEP Integers packed(const Painter& p, Floats factor) {
  return __builtin_convertvector(p.red * factor, Integers) << 16 |
         __builtin_convertvector(p.green * factor, Integers) << 8 |
         __builtin_convertvector(p.blue * factor, Integers);
}

/// One instruction where the square root need not set errno.
KERNEL_STEP Floats rootOf(Floats values) {
  Floats roots;
  for (int lane = 0; lane < kLanes; ++lane) roots[lane] = __builtin_sqrtf(values[lane]);
  return roots;
}

/// `factor` in [kDarkest, 1]; 1 for what is no number.
KERNEL_STEP Floats clamped(Floats factor) {
  const Floats darkest = Floats{} + kDarkest;
  const Floats full = Floats{} + 1.0F;
  const Floats lit = factor < darkest ? darkest : factor;
  return lit < full ? lit : full;
}

/// Four pixels. `slope` is gx·a + gy·a + b, `square` is gx² + gy² + 1. A lane of `unsure` is not 0
/// where the error bound leaves the pixel open.
KERNEL_STEP Integers shade(const Painter& p, Floats slope, Floats square, Integers* unsure) {
  const Floats cosine = slope / rootOf(square);
  const Floats factor =
      cosine * static_cast<float>(kDiffuse * kGain) + static_cast<float>(kAmbient * kGain);
  const Floats low = clamped(factor - kFactorError);
  const Integers pixels = packed(p, low);
  *unsure = (pixels ^ packed(p, low + 2 * kFactorError)) | ~(square < kSquareLimit);
  return pixels;
}

KERNEL_STEP bool isAnySet(Integers lanes) {
  using Halves [[gnu::vector_size(16)]] = std::int64_t;
  const auto halves = reinterpret_cast<Halves>(lanes);
  return (halves[0] | halves[1]) != 0;
}

/// Computes those of the `columns` pixels from `left` on that are unsure, one by one.
[[gnu::noinline]] void settle(const PaintJob& job, std::int32_t left, int columns, std::int32_t row,
                              const Integers& unsure, std::uint32_t* pixels) {
  for (int lane = 0; lane < columns; ++lane) {
    if (unsure[lane] == 0) continue;
    pixels[lane] = shadePixel(*job.cushion, job.colour, left + lane, row);
  }
}

/// Pixel by pixel: one column leaves three lanes of four to nobody.
void paintColumn(const PaintJob& job, const MapImage& image) {
  const auto width = static_cast<std::size_t>(image.width);
  const PixelBounds& bounds = job.bounds;
  std::size_t at =
      static_cast<std::size_t>(bounds.top) * width + static_cast<std::size_t>(bounds.left);
  for (std::int32_t row = bounds.top; row < bounds.bottom; ++row, at += width) {
    image.pixels[at] = shadePixel(*job.cushion, job.colour, bounds.left, row);
    image.blockAt[at] = job.blockIndex;
  }
}

template <int kColumns>
KERNEL_STEP void store(std::uint32_t* to, const Integers& values) {
  if constexpr (kColumns == 3) {  // there is no store of three
    store<2>(to, values);
    to[2] = static_cast<std::uint32_t>(values[2]);
  } else {
    std::memcpy(to, &values, kColumns * sizeof *to);
  }
}

/// All rows of `kColumns` columns from `left` on.
template <int kColumns>
KERNEL_STEP void paintStrip(const Painter& p, std::int32_t left) {
  const CushionCoefficients& cushion = *p.job.cushion;
  const PixelBounds& bounds = p.job.bounds;
  const Doubles centres = static_cast<double>(left) + Doubles{0.5, 1.5, 2.5, 3.5};
  const Floats gx =
      __builtin_convertvector(2 * cushion.quadraticX * centres + cushion.linearX, Floats);
  const Floats slopeX = gx * kAcross;
  const Floats squareX = gx * gx;
  const Integers index = Integers{} + static_cast<std::int32_t>(p.job.blockIndex);
  const auto width = static_cast<std::size_t>(p.image.width);
  std::size_t at = static_cast<std::size_t>(bounds.top) * width + static_cast<std::size_t>(left);
  for (std::int32_t row = bounds.top; row < bounds.bottom; ++row, at += width) {
    const auto gy = static_cast<float>(2 * cushion.quadraticY * (row + 0.5) + cushion.linearY);
    Integers unsure;
    const Integers pixels =
        shade(p, slopeX + (gy * kAcross + kUp), squareX + (gy * gy + 1), &unsure);
    store<kColumns>(p.image.pixels + at, pixels);
    store<kColumns>(p.image.blockAt + at, index);
    if (isAnySet(unsure)) settle(p.job, left, kColumns, row, unsure, p.image.pixels + at);
  }
}

/// A width that is no multiple of four is covered by letting the last strip overlap the one before,
/// which computes some pixels twice, to the same values.
KERNEL_STEP void paint(const Painter& p) {
  const PixelBounds& bounds = p.job.bounds;
  switch (bounds.right - bounds.left) {
    case 1:
      return paintColumn(p.job, p.image);
    case 2:
      return paintStrip<2>(p, bounds.left);
    case 3:
      return paintStrip<3>(p, bounds.left);
    default:
      break;
  }
  std::int32_t left = bounds.left;
  for (; left <= bounds.right - kLanes; left += kLanes) paintStrip<kLanes>(p, left);
  if (left < bounds.right) paintStrip<kLanes>(p, bounds.right - kLanes);
}

}  // namespace

std::uint32_t shadePixel(const CushionCoefficients& cushion, std::uint32_t colour,
                         std::int32_t column, std::int32_t row) {
  const double gx = 2 * cushion.quadraticX * (column + 0.5) + cushion.linearX;
  const double gy = 2 * cushion.quadraticY * (row + 0.5) + cushion.linearY;
  const double cosine =
      (gx * kLightAcross + gy * kLightAcross + kLightUp) / std::sqrt(gx * gx + gy * gy + 1);
  const double factor = cosine < 0 ? kShadow : (kDiffuse * cosine + kAmbient) * kGain;
  if (cosine >= 0 && factor >= 1) return colour & 0xFFFFFF;
  return scaled(colour >> 16 & 255, factor) << 16 | scaled(colour >> 8 & 255, factor) << 8 |
         scaled(colour & 255, factor);
}

void paintJobs(std::span<const PaintJob> jobs, const MapImage& image) {
  for (const PaintJob& job : jobs) {
    paint({job, image, channel(job.colour, 16), channel(job.colour, 8), channel(job.colour, 0)});
  }
}

}  // namespace app
