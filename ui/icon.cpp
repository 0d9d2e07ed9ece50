#include "ui/icon.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "ui/canvas.h"

namespace ui {

namespace {

constexpr std::size_t kMaxScaled = 4;
constexpr std::array<unsigned, 3> kChannelShifts = {16, 8, 0};

constexpr double channelOf(Colour colour, unsigned shift) {
  return static_cast<double>((colour >> shift) & 0xFF);
}

/// Source pixels from `first` up to, not including, `end`.
struct Span {
  int first;
  int end;
};

/// What output row or column `i` of `size` covers of a source `length` long: one pixel at least.
Span covered(int i, int size, int length) {
  const auto edge = [&](int at) {
    return static_cast<int>(static_cast<std::int64_t>(at) * length / size);
  };
  return {edge(i), std::max(edge(i) + 1, edge(i + 1))};
}

/// The mean of the image within `columns` and `rows`, on `background`.
std::uint32_t boxMean(const IconImage& image, Span columns, Span rows, Colour background) {
  double alphaSum = 0;
  std::array<double, 3> sums{};
  for (int y = rows.first; y < rows.end; ++y) {
    for (int x = columns.first; x < columns.end; ++x) {
      const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                      static_cast<std::size_t>(x);
      const Colour pixel = image.pixels[at];
      const double alpha = alphaOf(pixel) / 255.0;
      alphaSum += alpha;
      for (std::size_t c = 0; c < sums.size(); ++c) {
        sums[c] += channelOf(pixel, kChannelShifts[c]) * alpha;
      }
    }
  }

  const int count = (columns.end - columns.first) * (rows.end - rows.first);
  const double coverage = alphaSum / count;
  std::uint32_t result = 0;
  for (std::size_t c = 0; c < sums.size(); ++c) {
    const double colour = alphaSum > 0 ? sums[c] / alphaSum : 0;
    const double mixed =
        colour * coverage + channelOf(background, kChannelShifts[c]) * (1 - coverage);
    result |= static_cast<std::uint32_t>(std::clamp(mixed, 0.0, 255.0)) << kChannelShifts[c];
  }
  return result;
}

}  // namespace

std::vector<std::uint32_t> flattened(const IconImage& image, int size, Colour background) {
  std::vector<std::uint32_t> pixels;
  pixels.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
  for (int y = 0; y < size; ++y) {
    const Span rows = covered(y, size, image.height);
    for (int x = 0; x < size; ++x) {
      pixels.push_back(boxMean(image, covered(x, size, image.width), rows, background));
    }
  }
  return pixels;
}

bool Icon::load() {
  if (tried_) return loaded_;
  tried_ = true;
  if (std::optional<IconImage> image = decodeIcon(png_)) {
    image_ = std::move(*image);
    loaded_ = true;
  }
  return loaded_;
}

void Icon::draw(Canvas& canvas, int x, int y, int size, Colour background) {
  if (size < 1 || !load()) return;
  canvas.putPixels(x, y, scaledTo(size, background).pixels, size, size);
}

const Icon::Scaled& Icon::scaledTo(int size, Colour background) {
  const auto found = std::find_if(scaled_.begin(), scaled_.end(), [&](const Scaled& entry) {
    return entry.size == size && entry.background == background;
  });
  if (found != scaled_.end()) return *found;

  if (scaled_.size() >= kMaxScaled) scaled_.erase(scaled_.begin());
  return scaled_.emplace_back(Scaled{size, background, flattened(image_, size, background)});
}

}  // namespace ui
