#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/colour.h"
#include "ui/geometry.h"

namespace app {

/// How full a volume is, in bytes.
struct VolumeFigures {
  std::int64_t used = 0;
  std::int64_t total = 0;
  bool operator==(const VolumeFigures&) const = default;
};

/// A volume that the welcome view offers for scanning.
struct VolumeCard {
  /// Bytes, as the file system has them.
  std::string name;
  std::string path;
  /// Nothing while the file system has not answered yet.
  std::optional<VolumeFigures> figures;
  bool operator==(const VolumeCard&) const = default;
};

inline constexpr std::string_view kWelcomeHeading = "Heap Gauge - choose a folder to measure";
inline constexpr std::string_view kWelcomeNote =
    "Scanning is incremental — results appear as they are found.";
inline constexpr std::string_view kChooseFolderText = "Choose a Folder…";
/// Under the button, for those who came by a menu of programs.
inline constexpr std::string_view kCommandLineHint =
    "Or give one on the command line: heapgauge FOLDER";
/// On a card without figures.
inline constexpr std::string_view kFiguresPendingText = "Waiting for its size…";

/// Under the name of a card, such as "1.20 GB used of 512 GB".
std::string figuresText(const VolumeCard& card);

/// The bar of a card whose track is `trackWidth` pixels wide.
struct UsageBar {
  /// Of the filled part: at least 3 pixels, and never more than the track.
  int fillWidth = 0;
  /// More than nine tenths are used.
  bool nearlyFull = false;
  bool operator==(const UsageBar&) const = default;
};

/// Nothing when there is no bar: without figures, and for a volume without a size.
std::optional<UsageBar> usageBar(const VolumeCard& card, int trackWidth);

/// The filled part of a bar that is nearly full.
inline constexpr ui::Colour kNearlyFullColour = 0xFFE0624A;
/// The track of a bar.
constexpr ui::Colour trackColour(bool dark) { return dark ? 0xFF1C1C20 : 0xFFE2E1E0; }

/// What the welcome view is laid out for. Pixels are device pixels.
struct WelcomeRequest {
  ui::Rect view;
  double scale = 1;
  /// Of the body font and of the heading's.
  int lineHeight = 0;
  int headingHeight = 0;
  /// Of `kWelcomeHeading` in the heading's font, and of the others in the body font.
  int headingTextWidth = 0;
  int noteTextWidth = 0;
  int buttonTextWidth = 0;
  int hintTextWidth = 0;
  std::size_t cards = 0;
};

/// The parts of a card.
struct CardPlaces {
  ui::Rect card;
  ui::Rect name;
  ui::Rect figures;
  ui::Rect track;
};

/// Where the parts of the welcome view are. A part without room is empty. All stand on one axis,
/// the middle of the view, and where all cards are seen with room to spare, twice as much of that
/// is below them as above.
struct WelcomeLayout {
  ui::Rect icon;
  ui::Rect heading;
  ui::Rect note;
  /// Cards in a row, at least 1.
  int columns = 1;
  int cardWidth = 0;
  /// All cards, in rows from the top. Where not all rows leave room for the button below them, the
  /// others lie below the view of the cards, which scrolls to them.
  std::vector<CardPlaces> cards;
  /// Across the view, as high as the rows that are seen at once: never a part of one.
  ui::Rect cardsView;
  /// Of all rows with the gaps between them, and from one row to the next.
  int cardsHeight = 0;
  int rowStep = 0;
  ui::Rect button;
  /// The line under the button, where the cards leave room for it.
  ui::Rect hint;
};

WelcomeLayout layOutWelcome(const WelcomeRequest& request);

}  // namespace app
