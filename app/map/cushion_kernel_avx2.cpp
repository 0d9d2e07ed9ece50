// Eight pixels at a time: a row of eight, or two rows of up to four. There are no masks worth
// having in this instruction set, so every width has its own stores.

#include "app/map/cushion_kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

namespace app {

namespace {

#define INLINE_AVX2 [[gnu::target("avx2"), gnu::always_inline]] inline

struct Painter {
  const PaintJob& job;
  const MapImage& image;
  __m256 red, green, blue;

  std::size_t at(std::int32_t column, std::int32_t row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(image.width) +
           static_cast<std::size_t>(column);
  }
};

INLINE_AVX2 __m256 channel(std::uint32_t colour, int shift) {
  return _mm256_set1_ps(static_cast<float>(colour >> shift & 255));
}

INLINE_AVX2 __m256i packed(const Painter& p, __m256 factor) {
  const __m256i red = _mm256_cvttps_epi32(_mm256_mul_ps(p.red, factor));
  const __m256i green = _mm256_cvttps_epi32(_mm256_mul_ps(p.green, factor));
  const __m256i blue = _mm256_cvttps_epi32(_mm256_mul_ps(p.blue, factor));
  return _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi32(red, 16), _mm256_slli_epi32(green, 8)),
                         blue);
}

/// Eight pixels. `slope` is gx·a + gy·a + b, `square` is gx² + gy² + 1. Sets a bit in `unsure` for
/// each pixel that the error bound leaves open.
INLINE_AVX2 __m256i shade(const Painter& p, __m256 slope, __m256 square, unsigned* unsure) {
  const __m256 cosine = _mm256_div_ps(slope, _mm256_sqrt_ps(square));
  const __m256 factor =
      _mm256_add_ps(_mm256_mul_ps(cosine, _mm256_set1_ps(static_cast<float>(kDiffuse * kGain))),
                    _mm256_set1_ps(static_cast<float>(kAmbient * kGain)));
  const __m256 darkest = _mm256_set1_ps(kShadowSingle);
  const __m256 full = _mm256_set1_ps(1.0F);
  const __m256 error = _mm256_set1_ps(kFactorError);
  const __m256 low = _mm256_min_ps(_mm256_max_ps(_mm256_sub_ps(factor, error), darkest), full);
  const __m256 high = _mm256_min_ps(_mm256_max_ps(_mm256_add_ps(factor, error), darkest), full);
  const __m256i pixels = packed(p, low);
  const __m256i same = _mm256_cmpeq_epi32(pixels, packed(p, high));
  *unsure = ~static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(same))) & 0xFF;
  return pixels;
}

/// 2·q·(p + 0.5) + l for four pixels from `first` on.
INLINE_AVX2 __m256d gradient(double quadratic, double linear, std::int32_t first) {
  const __m256d centre = _mm256_add_pd(_mm256_set1_pd(first), _mm256_setr_pd(0.5, 1.5, 2.5, 3.5));
  return _mm256_add_pd(_mm256_mul_pd(_mm256_set1_pd(2 * quadratic), centre),
                       _mm256_set1_pd(linear));
}

template <int kColumns>
INLINE_AVX2 void store(std::uint32_t* to, __m128i values) {
  if constexpr (kColumns == 4) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), values);
  } else if constexpr (kColumns >= 2) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), values);
    if constexpr (kColumns == 3) to[2] = static_cast<std::uint32_t>(_mm_extract_epi32(values, 2));
  } else {
    to[0] = static_cast<std::uint32_t>(_mm_cvtsi128_si32(values));
  }
}

/// A block, or a part of one, of `kColumns` columns: two rows at a time, each in one half of the
/// vector.
template <int kColumns>
INLINE_AVX2 void paintNarrow(const Painter& p, const PixelBounds& bounds) {
  const CushionCoefficients& cushion = *p.job.cushion;
  constexpr unsigned kLanes = (1U << kColumns) - 1;
  const __m128 gx = _mm256_cvtpd_ps(gradient(cushion.quadraticX, cushion.linearX, bounds.left));
  const __m128 across = _mm_mul_ps(gx, _mm_set1_ps(static_cast<float>(kLightAcross)));
  const __m256 slopeX = _mm256_set_m128(across, across);
  const __m128 squared = _mm_mul_ps(gx, gx);
  const __m256 squareX = _mm256_set_m128(squared, squared);
  const __m128i index = _mm_set1_epi32(static_cast<int>(p.job.blockIndex));
  const std::ptrdiff_t stride = p.image.width;
  std::uint32_t* pixels = p.image.pixels + p.at(bounds.left, bounds.top);
  std::uint32_t* blockAt = p.image.blockAt + p.at(bounds.left, bounds.top);
  __m256i pick = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
  for (std::int32_t row = bounds.top; row < bounds.bottom; row += 4) {
    const __m128 gy = _mm256_cvtpd_ps(gradient(cushion.quadraticY, cushion.linearY, row));
    const __m256 slopeY = _mm256_castps128_ps256(
        _mm_add_ps(_mm_mul_ps(gy, _mm_set1_ps(static_cast<float>(kLightAcross))),
                   _mm_set1_ps(static_cast<float>(kLightUp))));
    const __m256 squareY =
        _mm256_castps128_ps256(_mm_add_ps(_mm_mul_ps(gy, gy), _mm_set1_ps(1.0F)));
    for (std::int32_t pair = 0; pair < 4 && row + pair < bounds.bottom; pair += 2) {
      const __m256i which = _mm256_add_epi32(pick, _mm256_set1_epi32(pair));
      unsigned unsure = 0;
      const __m256i shaded =
          shade(p, _mm256_add_ps(slopeX, _mm256_permutevar8x32_ps(slopeY, which)),
                _mm256_add_ps(squareX, _mm256_permutevar8x32_ps(squareY, which)), &unsure);
      store<kColumns>(pixels, _mm256_castsi256_si128(shaded));
      store<kColumns>(blockAt, index);
      if ((unsure & kLanes) != 0) {
        shadeExactly(p.job, bounds.left, row + pair, unsure & kLanes, pixels);
      }
      if (row + pair + 1 < bounds.bottom) {
        store<kColumns>(pixels + stride, _mm256_extracti128_si256(shaded, 1));
        store<kColumns>(blockAt + stride, index);
        if ((unsure >> 4 & kLanes) != 0) {
          shadeExactly(p.job, bounds.left, row + pair + 1, unsure >> 4 & kLanes, pixels + stride);
        }
      }
      pixels += 2 * stride;
      blockAt += 2 * stride;
    }
  }
}

/// Eight columns from `left` on.
INLINE_AVX2 void paintStrip(const Painter& p, std::int32_t left, const PixelBounds& bounds) {
  const CushionCoefficients& cushion = *p.job.cushion;
  const __m256 gx =
      _mm256_set_m128(_mm256_cvtpd_ps(gradient(cushion.quadraticX, cushion.linearX, left + 4)),
                      _mm256_cvtpd_ps(gradient(cushion.quadraticX, cushion.linearX, left)));
  const __m256 slopeX = _mm256_mul_ps(gx, _mm256_set1_ps(static_cast<float>(kLightAcross)));
  const __m256 squareX = _mm256_mul_ps(gx, gx);
  const __m256i index = _mm256_set1_epi32(static_cast<int>(p.job.blockIndex));
  std::size_t at = p.at(left, bounds.top);
  for (std::int32_t row = bounds.top; row < bounds.bottom; ++row) {
    const auto gy = static_cast<float>(2 * cushion.quadraticY * (row + 0.5) + cushion.linearY);
    const float slopeY = gy * static_cast<float>(kLightAcross) + static_cast<float>(kLightUp);
    unsigned unsure = 0;
    const __m256i shaded = shade(p, _mm256_add_ps(slopeX, _mm256_set1_ps(slopeY)),
                                 _mm256_add_ps(squareX, _mm256_set1_ps(gy * gy + 1)), &unsure);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p.image.pixels + at), shaded);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p.image.blockAt + at), index);
    if (unsure != 0) {
      shadeExactly(p.job, left, row, unsure, p.image.pixels + at);
    }
    at += static_cast<std::size_t>(p.image.width);
  }
}

INLINE_AVX2 bool fitsSinglePrecision(const CushionCoefficients& cushion) {
  const __m256d sign = _mm256_set1_pd(-0.0);
  const __m256d size = _mm256_andnot_pd(sign, _mm256_loadu_pd(&cushion.quadraticX));
  // Ordered, so that a coefficient that is no number does not fit either.
  const __m256d fits = _mm256_cmp_pd(size, _mm256_set1_pd(kCoefficientLimit), _CMP_LT_OQ);
  return _mm256_movemask_pd(fits) == 0xF;
}

/// Widths that are no multiple of the vector's are covered by letting the last vector overlap the
/// one before, which computes some pixels twice, to the same values. This instruction set's
/// masked stores are microcoded on some processors and slower there than that.
INLINE_AVX2 void paint(const Painter& p) {
  const PixelBounds& bounds = p.job.bounds;
  const std::int32_t columns = bounds.right - bounds.left;
  switch (columns) {
    case 1:
      return paintNarrow<1>(p, bounds);
    case 2:
      return paintNarrow<2>(p, bounds);
    case 3:
      return paintNarrow<3>(p, bounds);
    case 4:
      return paintNarrow<4>(p, bounds);
    default:
      break;
  }
  if (columns < 8) {
    paintNarrow<4>(p, bounds);
    paintNarrow<4>(p, {bounds.right - 4, bounds.right, bounds.top, bounds.bottom});
    return;
  }
  std::int32_t left = bounds.left;
  for (; left <= bounds.right - 8; left += 8) paintStrip(p, left, bounds);
  if (left < bounds.right) paintStrip(p, bounds.right - 8, bounds);
}

/// `pixelBounds` with the four edges side by side: the same operations, so the same pixels.
class EdgeRounder {
 public:
  INLINE_AVX2 EdgeRounder(std::int32_t width, const Band& band)
      : limits_(_mm256_setr_pd(width, width, band.bottom, band.bottom)),
        lowest_(_mm_setr_epi32(0, 0, band.top, 0)) {}

  /// The edges in the order of `PixelBounds`.
  INLINE_AVX2 __m128i round(const MapRect& rect) const {
    const __m256d place = _mm256_loadu_pd(&rect.x);
    const __m256d size = _mm256_permute4x64_pd(place, 0xFA);
    const __m256d edges = _mm256_add_pd(_mm256_permute4x64_pd(place, 0x50),
                                        _mm256_blend_pd(_mm256_setzero_pd(), size, 0xA));
    // The edge first: an edge that is no number becomes 0.
    const __m256d clamped = _mm256_min_pd(_mm256_max_pd(edges, _mm256_setzero_pd()), limits_);
    const __m128i whole = _mm256_cvttpd_epi32(clamped);
    const __m256d rest = _mm256_sub_pd(clamped, _mm256_cvtepi32_pd(whole));
    const __m256d up = _mm256_cmp_pd(rest, _mm256_set1_pd(0.5), _CMP_GE_OQ);
    const __m128i ones = _mm256_cvttpd_epi32(_mm256_and_pd(up, _mm256_set1_pd(1)));
    return _mm_max_epi32(_mm_add_epi32(whole, ones), lowest_);
  }

 private:
  __m256d limits_;
  __m128i lowest_;
};

/// Whether left < right and top < bottom.
INLINE_AVX2 bool hasPixels(__m128i bounds) {
  const __m128i ends = _mm_shuffle_epi32(bounds, 0xF5);
  const int later = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpgt_epi32(ends, bounds)));
  return (later & 5) == 5;
}

}  // namespace

[[gnu::target("avx2")]] std::size_t gatherJobsAvx2(const BlockRun& run, std::int32_t width,
                                                   const Band& band, PaintJob* jobs) {
  const EdgeRounder rounder(width, band);
  std::size_t count = 0;
  for (std::size_t i = 0; i < run.blocks.size(); ++i) {
    const TreemapBlock& block = run.blocks[i];
    const __m128i bounds = rounder.round(block.rect);
    PaintJob& job = jobs[count];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(&job.bounds), bounds);
    job.cushion = &block.cushion;
    job.colour = run.colours[i];
    job.blockIndex = run.firstIndex + static_cast<std::uint32_t>(i);
    count += static_cast<std::size_t>(block.painted & hasPixels(bounds));
  }
  return count;
}

[[gnu::target("avx2")]] void paintJobsAvx2(std::span<const PaintJob> jobs, const MapImage& image) {
  for (const PaintJob& job : jobs) {
    if (fitsSinglePrecision(*job.cushion)) {
      paint({job, image, channel(job.colour, 16), channel(job.colour, 8), channel(job.colour, 0)});
    } else {
      paintJobsPlain({&job, 1}, image);
    }
  }
}

}  // namespace app

#endif
