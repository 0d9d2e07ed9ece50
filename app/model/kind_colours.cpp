#include "app/model/kind_colours.h"

#include <cmath>
#include <cstddef>
#include <optional>

namespace app {

using sizewalk::KindIndex;

namespace {

constexpr std::uint32_t kFolderColour = 0xFF3A3A3C;
constexpr std::uint32_t kSymbolicLinkColour = 0xFF5A5A5E;
constexpr std::uint32_t kNoKindColour = 0xFF808080;

/// Kinds that keep their colours whatever the ranks: those that do not come from an extension.
constexpr int kFixedKinds = 4;

/// A channel in 0..1 as a byte, truncated.
std::uint32_t channelByte(double channel) {
  const double scaled = channel * 255;
  if (scaled >= 255) return 255;
  if (scaled <= 0) return 0;
  return static_cast<std::uint32_t>(scaled);
}

std::uint32_t packRgb(double r, double g, double b) {
  return 0xFF000000 | channelByte(r) << 16 | channelByte(g) << 8 | channelByte(b);
}

/// The hexcone model ("Color gamut transform pairs", A. R. Smith 1978); all three in 0..1.
std::uint32_t hsvColour(double h, double s, double v) {
  const double whole = std::floor(6 * h);
  const double f = 6 * h - whole;
  const double p = v * (1 - s);
  const double q = v * (1 - s * f);
  const double t = v * (1 - s * (1 - f));
  switch (static_cast<int>(whole) % 6) {
    case 0:
      return packRgb(v, t, p);
    case 1:
      return packRgb(q, v, p);
    case 2:
      return packRgb(p, v, t);
    case 3:
      return packRgb(p, q, v);
    case 4:
      return packRgb(t, p, v);
    default:
      return packRgb(v, p, q);
  }
}

/// Hues a golden ratio of the wheel apart never come round to each other; where they come close,
/// saturation and value differ.
std::uint32_t generatedColour(KindIndex kind) {
  const double turns = kind * 0.6180339887;
  const double hue = turns - std::floor(turns);
  const double saturation = 0.55 + (kind % 3) * 0.2 * 0.5;
  const double value = 0.72 + (kind % 2) * 0.18;
  return hsvColour(hue, saturation, value);
}

KindColours::Table makeColours() {
  KindColours::Table colours;
  for (KindIndex kind = 0; kind < sizewalk::kKindCount; ++kind) {
    colours[kind] = generatedColour(kind);
  }
  colours[sizewalk::kKindFolder] = kFolderColour;
  colours[sizewalk::kKindSymbolicLink] = kSymbolicLinkColour;
  return colours;
}

std::optional<std::int32_t> rankOf(KindIndex kind, const KindColours::Slots& slots) {
  const auto slot = slots.find(kind);
  return slot == slots.end() ? std::nullopt : std::optional(slot->second);
}

}  // namespace

KindColours::KindColours(bool consistent) : consistent_(consistent), colours_(makeColours()) {}

std::uint32_t KindColours::colourForKind(KindIndex kind) const {
  if (!consistent_) {
    if (const auto rank = rankOf(kind, kindSlots_)) {
      constexpr int kCycle = sizewalk::kKindCount - kFixedKinds;
      const int place = (*rank % kCycle + kCycle) % kCycle;  // a rank below 0 cycles too
      return colours_[static_cast<std::size_t>(kFixedKinds) + static_cast<std::size_t>(place)];
    }
  }
  if (kind >= sizewalk::kKindCount) return kNoKindColour;
  return colours_[kind];
}

}  // namespace app
