#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "sizewalk/file_kinds.h"

namespace app {

/// The colour of every file kind. While `consistent`, a kind looks the same in every scan;
/// otherwise colours follow the ranks in `kindSlots`, so that the most prominent kinds of the scan
/// get the first colours. Colours are 0xFFRRGGBB. Changed on the window thread; each picture of the
/// map has a copy, which it was drawn with and all beside it is painted with.
class KindColours {
 public:
  using Table = std::array<std::uint32_t, sizewalk::kKindCount>;
  /// Kind to rank, 0 first.
  using Slots = std::unordered_map<sizewalk::KindIndex, std::int32_t>;

  /// `consistent` is the user's setting "ConsistentKindColours"; the owner reads it and follows its
  /// changes with `setConsistent`.
  explicit KindColours(bool consistent);

  bool consistent() const { return consistent_; }
  void setConsistent(bool consistent) { consistent_ = consistent; }

  const Slots& kindSlots() const { return kindSlots_; }
  void setKindSlots(Slots slots) { kindSlots_ = std::move(slots); }

  /// The colours of the kinds themselves, ranks aside.
  const Table& colours() const { return colours_; }

  /// The colour to draw `kind` with. Ranked kinds cycle through the colours that are not fixed; a
  /// kind outside the list is grey, 0xFF808080.
  std::uint32_t colourForKind(sizewalk::KindIndex kind) const;

 private:
  bool consistent_;
  Table colours_;
  Slots kindSlots_;
};

}  // namespace app
