#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/map/rendered_treemap.h"
#include "app/model/measure.h"
#include "sizewalk/file_tree.h"

namespace app {

/// What the map tells of an item when the pointer rests on it.
struct MapCard {
  /// What stays of a text that is too long; of one that ends in a quotation its closing mark, too.
  enum class Keeps { Beginning, End, BeginningAndQuote };

  struct Fact {
    std::string label;
    std::string text;
    Keeps keeps = Keeps::Beginning;
    friend bool operator==(const Fact&, const Fact&) = default;
  };

  std::string title;
  std::vector<Fact> facts;
  /// The colour of the item's kind in the picture, 0xFFRRGGBB; nothing where there is no one kind.
  std::optional<std::uint32_t> swatch = std::nullopt;
  friend bool operator==(const MapCard&, const MapCard&) = default;
};

/// The card of a painted block of `map`, a picture of `tree` under `measure`: an item as it is by
/// now, merged ones as they were when the picture was made. Times are told in the local time zone.
/// Window thread.
MapCard mapCard(const RenderedTreemap& map, const PictureBlock& block,
                const sizewalk::FileTree& tree, const MeasureSettings& measure);

/// The share that `part` has of `whole`, such as "12.3 %": "0 %" of nothing, never
/// more than "100.0 %".
std::string shareText(std::int64_t part, std::int64_t whole);

/// The local date and time of `seconds` since the epoch, such as "2026-03-31 17:05".
std::string dateText(std::uint32_t seconds);

}  // namespace app
