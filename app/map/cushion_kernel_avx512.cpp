// Sixteen pixels at a time, laid out by the block's shape: a row of sixteen, two rows of eight,
// four rows of four, or four blocks of two by two. Shape matters more than width here: where a
// million files share a screen, a block has two to five pixels, and a kernel that only knows rows
// computes mostly lanes that nobody needs. Stores are masked, so a vector may reach over the
// block's edges.

#include "app/map/cushion_kernels.h"

#include <algorithm>

#if defined(__x86_64__)

#if !defined(__clang__)
// GCC's own header starts from a register with any contents where all of it will be overwritten,
// and the compiler warns of that wherever it is inlined (GCC bug 105593).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>

namespace app {

namespace {

#define INLINE_AVX512 [[gnu::target("avx512f,avx512vl"), gnu::always_inline]] inline

/// The colours of sixteen pixels.
struct Channels {
  __m512 red, green, blue;
};

/// From one 0xRRGGBB for each pixel.
INLINE_AVX512 Channels channelsOf(__m512i colours) {
  const __m512i byte = _mm512_set1_epi32(255);
  return {_mm512_cvtepi32_ps(_mm512_and_si512(_mm512_srli_epi32(colours, 16), byte)),
          _mm512_cvtepi32_ps(_mm512_and_si512(_mm512_srli_epi32(colours, 8), byte)),
          _mm512_cvtepi32_ps(_mm512_and_si512(colours, byte))};
}

INLINE_AVX512 __m512i packed(const Channels& colours, __m512 factor) {
  const __m512i red = _mm512_cvttps_epi32(_mm512_mul_ps(colours.red, factor));
  const __m512i green = _mm512_cvttps_epi32(_mm512_mul_ps(colours.green, factor));
  const __m512i blue = _mm512_cvttps_epi32(_mm512_mul_ps(colours.blue, factor));
  return _mm512_or_si512(_mm512_or_si512(_mm512_slli_epi32(red, 16), _mm512_slli_epi32(green, 8)),
                         blue);
}

/// Sixteen pixels. `slope` is gx·a + gy·a + b, `square` is gx² + gy² + 1. Sets a bit in `unsure`
/// for each pixel that the error bound leaves open.
INLINE_AVX512 __m512i shade(const Channels& colours, __m512 slope, __m512 square,
                            unsigned* unsure) {
  const __m512 cosine = _mm512_div_ps(slope, _mm512_sqrt_ps(square));
  const __m512 factor =
      _mm512_add_ps(_mm512_mul_ps(cosine, _mm512_set1_ps(static_cast<float>(kDiffuse * kGain))),
                    _mm512_set1_ps(static_cast<float>(kAmbient * kGain)));
  const __m512 darkest = _mm512_set1_ps(kShadowSingle);
  const __m512 full = _mm512_set1_ps(1.0F);
  const __m512 error = _mm512_set1_ps(kFactorError);
  const __m512 low = _mm512_min_ps(_mm512_max_ps(_mm512_sub_ps(factor, error), darkest), full);
  const __m512 high = _mm512_min_ps(_mm512_max_ps(_mm512_add_ps(factor, error), darkest), full);
  const __m512i pixels = packed(colours, low);
  *unsure = _mm512_cmpneq_epi32_mask(pixels, packed(colours, high));
  return pixels;
}

/// One block and what is the same for all its pixels.
struct Painter {
  const PaintJob& job;
  const MapImage& image;
  Channels colours;
};

/// 2·q·(p + 0.5) + l for four pixels from `first` on.
INLINE_AVX512 __m128 gradient(double quadratic, double linear, std::int32_t first) {
  const __m256d centre = _mm256_add_pd(_mm256_set1_pd(first), _mm256_setr_pd(0.5, 1.5, 2.5, 3.5));
  return _mm256_cvtpd_ps(
      _mm256_add_pd(_mm256_mul_pd(_mm256_set1_pd(2 * quadratic), centre), _mm256_set1_pd(linear)));
}

/// The vector's sixteen pixels are `kColumns` columns of 16 / kColumns rows. This gives the
/// gradient of each of them from that of the columns.
template <int kColumns>
INLINE_AVX512 __m512 acrossLanes(double quadratic, double linear, std::int32_t left) {
  const __m128 first = gradient(quadratic, linear, left);
  if constexpr (kColumns == 4) return _mm512_broadcast_f32x4(first);
  __m512 lanes = _mm512_castps128_ps512(first);
  lanes = _mm512_insertf32x4(lanes, gradient(quadratic, linear, left + 4), 1);
  if constexpr (kColumns == 8) return _mm512_shuffle_f32x4(lanes, lanes, 0x44);
  lanes = _mm512_insertf32x4(lanes, gradient(quadratic, linear, left + 8), 2);
  return _mm512_insertf32x4(lanes, gradient(quadratic, linear, left + 12), 3);
}

/// Stores the vector's row `kRow` and the rows after it, each as far as `lanes` has bits. A row
/// without bits stores nothing, but its place must be within the image: that is cheaper than a
/// branch, which small blocks of all heights make unpredictable.
template <int kColumns, int kRow>
INLINE_AVX512 void storeRows(const Painter& p, std::size_t at, unsigned lanes, __m512i shaded) {
  std::uint32_t* const pixels = p.image.pixels + at;
  std::uint32_t* const blockAt = p.image.blockAt + at;
  const __m512i index = _mm512_set1_epi32(static_cast<int>(p.job.blockIndex));
  if constexpr (kColumns == 4) {
    const auto mask = static_cast<__mmask8>(lanes >> (4 * kRow) & 0xF);
    _mm_mask_storeu_epi32(pixels, mask, _mm512_extracti32x4_epi32(shaded, kRow));
    _mm_mask_storeu_epi32(blockAt, mask, _mm512_castsi512_si128(index));
  } else if constexpr (kColumns == 8) {
    const auto mask = static_cast<__mmask8>(lanes >> (8 * kRow) & 0xFF);
    _mm256_mask_storeu_epi32(pixels, mask, _mm512_extracti64x4_epi64(shaded, kRow));
    _mm256_mask_storeu_epi32(blockAt, mask, _mm512_castsi512_si256(index));
  } else {
    _mm512_mask_storeu_epi32(pixels, static_cast<__mmask16>(lanes), shaded);
    _mm512_mask_storeu_epi32(blockAt, static_cast<__mmask16>(lanes), index);
  }
  if constexpr ((kRow + 1) * kColumns < 16) {
    storeRows<kColumns, kRow + 1>(p, at + static_cast<std::size_t>(p.image.width), lanes, shaded);
  }
}

/// `kColumns` columns, or the last ones of a block, and what all their rows have in common.
template <int kColumns>
class Strip {
 public:
  static constexpr int kRows = 16 / kColumns;

  INLINE_AVX512 Strip(const Painter& p, std::int32_t left)
      : p_(p), left_(left), columns_(firstBits(p.job.bounds.right - left)) {
    const CushionCoefficients& cushion = *p.job.cushion;
    const __m512 gx = acrossLanes<kColumns>(cushion.quadraticX, cushion.linearX, left);
    slopeX_ = _mm512_mul_ps(gx, _mm512_set1_ps(static_cast<float>(kLightAcross)));
    squareX_ = _mm512_mul_ps(gx, gx);
  }

  /// Paints `kRows` rows from `top` on, as far as they are in the block. All must be in the image.
  INLINE_AVX512 void paintRows(std::int32_t top) const {
    const auto width = static_cast<std::size_t>(p_.image.width);
    const std::size_t at = static_cast<std::size_t>(top) * width + static_cast<std::size_t>(left_);
    const CushionCoefficients& cushion = *p_.job.cushion;
    const __m128 gy = gradient(cushion.quadraticY, cushion.linearY, top);
    const __m128 slopeY = _mm_add_ps(_mm_mul_ps(gy, _mm_set1_ps(static_cast<float>(kLightAcross))),
                                     _mm_set1_ps(static_cast<float>(kLightUp)));
    const __m128 squareY = _mm_add_ps(_mm_mul_ps(gy, gy), _mm_set1_ps(1.0F));
    unsigned unsure = 0;
    const __m512i shaded = shade(p_.colours, _mm512_add_ps(slopeX_, downLanes(slopeY)),
                                 _mm512_add_ps(squareX_, downLanes(squareY)), &unsure);
    const unsigned lanes = lanesOf(p_.job.bounds.bottom - top);
    storeRows<kColumns, 0>(p_, at, lanes, shaded);
    if (__builtin_expect((unsure & lanes) != 0, 0)) settle(unsure & lanes, top, at);
  }

 private:
  static unsigned firstBits(std::int32_t count) {
    return (1U << (count < kColumns ? count : kColumns)) - 1;
  }

  /// The lanes of the first `rows` rows that are in the block.
  unsigned lanesOf(std::int32_t rows) const {
    constexpr unsigned kRowStarts = kColumns == 4 ? 0x1111 : kColumns == 8 ? 0x0101 : 0x0001;
    const int length = (rows < kRows ? rows : kRows) * kColumns;
    return columns_ * (kRowStarts & ((1U << length) - 1));
  }

  /// The pixels that the error bound left open.
  void settle(unsigned open, std::int32_t top, std::size_t at) const {
    for (int row = 0; row < kRows; ++row) {
      shadeExactly(p_.job, left_, top + row, open >> (row * kColumns) & ((1U << kColumns) - 1),
                   p_.image.pixels + at +
                       static_cast<std::size_t>(row) * static_cast<std::size_t>(p_.image.width));
    }
  }

  /// Each lane's value from those of the rows.
  INLINE_AVX512 static __m512 downLanes(__m128 rows) {
    constexpr int k1 = 4 / kColumns;
    constexpr int k2 = 8 / kColumns;
    constexpr int k3 = 12 / kColumns;
    const __m512i rowOfLane =
        _mm512_setr_epi32(0, 0, 0, 0, k1, k1, k1, k1, k2, k2, k2, k2, k3, k3, k3, k3);
    return _mm512_permutexvar_ps(rowOfLane, _mm512_castps128_ps512(rows));
  }

  const Painter& p_;
  std::int32_t left_;
  unsigned columns_;
  __m512 slopeX_;
  __m512 squareX_;
};

template <int kColumns>
INLINE_AVX512 void paintStrips(const Painter& p) {
  const PixelBounds& bounds = p.job.bounds;
  for (std::int32_t left = bounds.left; left < bounds.right; left += kColumns) {
    const Strip<kColumns> strip(p, left);
    for (std::int32_t row = bounds.top; row < bounds.bottom; row += Strip<kColumns>::kRows) {
      strip.paintRows(row);
    }
  }
}

INLINE_AVX512 bool fitsSinglePrecision(const CushionCoefficients& cushion) {
  const __m256d size = _mm256_andnot_pd(_mm256_set1_pd(-0.0), _mm256_loadu_pd(&cushion.quadraticX));
  // Ordered, so that a coefficient that is no number does not fit either.
  const __m256d fits = _mm256_cmp_pd(size, _mm256_set1_pd(kCoefficientLimit), _CMP_LT_OQ);
  return _mm256_movemask_pd(fits) == 0xF;
}

INLINE_AVX512 void paint(const Painter& p) {
  const PixelBounds& bounds = p.job.bounds;
  const std::int32_t columns = bounds.right - bounds.left;
  const std::int32_t rows = bounds.bottom - bounds.top;
  const std::int32_t rowsLeft = p.image.height - bounds.top;
  if (columns <= 4 && rows <= 4 && rowsLeft >= 4) {
    // Most blocks of a large tree: the whole block in one vector, without a loop to be
    // mispredicted.
    Strip<4>(p, bounds.left).paintRows(bounds.top);
  } else if (columns > 8 || rowsLeft - rows < 3) {
    paintStrips<16>(p);  // the only ones that need no room below the block
  } else if (columns > 4) {
    paintStrips<8>(p);
  } else {
    paintStrips<4>(p);
  }
}

/// Blocks of at most two columns and two rows, which are most where a million files share a screen:
/// four of them in one vector.
constexpr std::size_t kTinyJobs = 4;

INLINE_AVX512 bool isTiny(const PaintJob& job, const MapImage& image) {
  const PixelBounds& bounds = job.bounds;
  return bounds.right - bounds.left <= 2 && bounds.bottom - bounds.top <= 2 &&
         bounds.top <= image.height - 2 && fitsSinglePrecision(*job.cushion);
}

/// The gradient across a tiny block's two columns, then that down its two rows.
INLINE_AVX512 __m128 tinyGradients(const PaintJob& job) {
  const __m128i bounds = _mm_loadu_si128(reinterpret_cast<const __m128i*>(&job.bounds));
  const __m256d first = _mm256_cvtepi32_pd(_mm_shuffle_epi32(bounds, 0xA0));
  const __m256d centre = _mm256_add_pd(first, _mm256_setr_pd(0.5, 1.5, 0.5, 1.5));
  const __m256d cushion = _mm256_loadu_pd(&job.cushion->quadraticX);
  const __m256d quadratic = _mm256_permute4x64_pd(cushion, 0x50);
  const __m256d linear = _mm256_permute4x64_pd(cushion, 0xFA);
  return _mm256_cvtpd_ps(
      _mm256_add_pd(_mm256_mul_pd(_mm256_add_pd(quadratic, quadratic), centre), linear));
}

INLINE_AVX512 void storeTiny(const PaintJob& job, const MapImage& image, __m128i shaded,
                             unsigned unsure) {
  const PixelBounds& bounds = job.bounds;
  const auto width = static_cast<std::ptrdiff_t>(image.width);
  const std::ptrdiff_t at = bounds.top * width + bounds.left;
  const unsigned columns = bounds.right - bounds.left == 2 ? 3 : 1;
  const unsigned rows = bounds.bottom - bounds.top == 2 ? 5 : 1;
  const unsigned lanes = columns * rows;
  const auto upper = static_cast<__mmask8>(lanes & 3);
  const auto lower = static_cast<__mmask8>(lanes & 12);
  const __m128i index = _mm_set1_epi32(static_cast<int>(job.blockIndex));
  std::uint32_t* const pixels = image.pixels + at;
  std::uint32_t* const blockAt = image.blockAt + at;
  _mm_mask_storeu_epi32(pixels, upper, shaded);
  _mm_mask_storeu_epi32(blockAt, upper, index);
  // The lower row is the vector's third and fourth lane.
  _mm_mask_storeu_epi32(pixels + width - 2, lower, shaded);
  _mm_mask_storeu_epi32(blockAt + width - 2, lower, index);
  const unsigned open = unsure & lanes;
  if (__builtin_expect(open != 0, 0)) {
    shadeExactly(job, bounds.left, bounds.top, open & 3, pixels);
    shadeExactly(job, bounds.left, bounds.top + 1, open >> 2, pixels + width);
  }
}

/// Paints one to four tiny blocks in their order.
INLINE_AVX512 void paintTiny(std::span<const PaintJob> jobs, const MapImage& image) {
  // Where there are fewer the last is painted again.
  const PaintJob& second = jobs[jobs.size() > 1 ? 1 : 0];
  const PaintJob& third = jobs[jobs.size() > 2 ? 2 : jobs.size() - 1];
  const PaintJob& fourth = jobs.back();
  __m512 gradients = _mm512_castps128_ps512(tinyGradients(jobs.front()));
  gradients = _mm512_insertf32x4(gradients, tinyGradients(second), 1);
  gradients = _mm512_insertf32x4(gradients, tinyGradients(third), 2);
  gradients = _mm512_insertf32x4(gradients, tinyGradients(fourth), 3);
  const __m512 gx = _mm512_permute_ps(gradients, 0x44);
  const __m512 gy = _mm512_permute_ps(gradients, 0xFA);
  const __m512 light = _mm512_set1_ps(static_cast<float>(kLightAcross));
  const __m512 slope = _mm512_add_ps(
      _mm512_mul_ps(gx, light),
      _mm512_add_ps(_mm512_mul_ps(gy, light), _mm512_set1_ps(static_cast<float>(kLightUp))));
  const __m512 square = _mm512_add_ps(_mm512_mul_ps(gx, gx),
                                      _mm512_add_ps(_mm512_mul_ps(gy, gy), _mm512_set1_ps(1.0F)));
  const __m128i colours =
      _mm_setr_epi32(static_cast<int>(jobs.front().colour), static_cast<int>(second.colour),
                     static_cast<int>(third.colour), static_cast<int>(fourth.colour));
  const __m512i jobOfLane = _mm512_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3);
  const Channels channels =
      channelsOf(_mm512_permutexvar_epi32(jobOfLane, _mm512_castsi128_si512(colours)));
  unsigned unsure = 0;
  const __m512i shaded = shade(channels, slope, square, &unsure);
  storeTiny(jobs.front(), image, _mm512_castsi512_si128(shaded), unsure);
  storeTiny(second, image, _mm512_extracti32x4_epi32(shaded, 1), unsure >> 4);
  storeTiny(third, image, _mm512_extracti32x4_epi32(shaded, 2), unsure >> 8);
  storeTiny(fourth, image, _mm512_extracti32x4_epi32(shaded, 3), unsure >> 12);
}

INLINE_AVX512 void paintOne(const PaintJob& job, const MapImage& image) {
  if (!fitsSinglePrecision(*job.cushion)) {
    paintJobsPlain({&job, 1}, image);
    return;
  }
  paint({job, image, channelsOf(_mm512_set1_epi32(static_cast<int>(job.colour)))});
}

}  // namespace

[[gnu::target("avx512f,avx512vl")]] void paintJobsAvx512(std::span<const PaintJob> jobs,
                                                         const MapImage& image) {
  const bool twoColumns = image.width >= 2;  // as the tiny blocks' lower rows need
  while (!jobs.empty()) {
    std::size_t tiny = 0;
    while (twoColumns && tiny < std::min(kTinyJobs, jobs.size()) && isTiny(jobs[tiny], image)) {
      ++tiny;
    }
    if (tiny > 0) {
      paintTiny(jobs.first(tiny), image);
    } else {
      paintOne(jobs.front(), image);
    }
    jobs = jobs.subspan(std::max<std::size_t>(tiny, 1));
  }
}

}  // namespace app

#endif
