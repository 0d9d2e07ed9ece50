#include "app/frame/frame_layout.h"

#include <algorithm>
#include <cstdint>

namespace app {

namespace {

// Logical pixels.
constexpr double kToolbarPadding = 6;
constexpr double kButtonPadding = 6;
constexpr double kStatusPadding = 8;
constexpr double kDivider = 5;
/// Of their own accord the list and the kinds table are this wide at least.
constexpr double kColumnWidth = 300;
constexpr double kKindsWidth = 320;
// Where dividers stop: below that names, rows or blocks are not told from each other any more.
constexpr double kLeastRowWidth = 220;
constexpr double kLeastRowsHeight = 80;
constexpr double kLeastMapSide = 160;

// Shares of what is divided.
constexpr double kColumnShare = 0.34;
constexpr double kListOverKindsShare = 0.62;
constexpr double kListHeightShare = 0.38;

/// A room and the two parts that a divider makes of it.
struct Split {
  ui::Rect first;
  ui::Rect divider;
  ui::Rect second;
};

/// How short the two parts of a room may become, in device pixels.
struct Least {
  int first;
  int second;
};

/// The length of the first part of a room of `length` with the divider taken off. Where both cannot
/// have their least each gets its share of what there is.
int fitted(int wanted, int length, const Least& least) {
  const int both = least.first + least.second;
  if (length < both) return static_cast<int>(std::int64_t{length} * least.first / both);
  return std::clamp(wanted, least.first, length - least.second);
}

int scaledShare(double share, int length) { return static_cast<int>(share * length + 0.5); }

Split splitAcross(const ui::Rect& room, int firstWidth, int dividerWidth) {
  const int divider = std::min(dividerWidth, room.w);
  const ui::Rect first = {room.x, room.y, firstWidth, room.h};
  const ui::Rect between = {room.x + firstWidth, room.y, divider, room.h};
  const int left = firstWidth + divider;
  return {first, between, {room.x + left, room.y, room.w - left, room.h}};
}

Split splitDown(const ui::Rect& room, int firstHeight, int dividerHeight) {
  const int divider = std::min(dividerHeight, room.h);
  const ui::Rect first = {room.x, room.y, room.w, firstHeight};
  const ui::Rect between = {room.x, room.y + firstHeight, room.w, divider};
  const int above = firstHeight + divider;
  return {first, between, {room.x, room.y + above, room.w, room.h - above}};
}

class FrameBuilder {
 public:
  explicit FrameBuilder(const FrameRequest& request)
      : request_(request),
        divider_(scaled(kDivider)),
        leastRowWidth_(scaled(kLeastRowWidth)),
        leastRowsHeight_(scaled(kLeastRowsHeight)),
        leastMapSide_(scaled(kLeastMapSide)) {}

  FrameLayout build() {
    frame_.toolbar =
        toolbarRect(request_.width, request_.height, request_.scale, request_.lineHeight);
    const int toolbar = frame_.toolbar.h;
    const int status =
        std::min(request_.lineHeight + scaled(kStatusPadding), request_.height - toolbar);
    frame_.status = {0, request_.height - status, request_.width, status};
    const int update = std::clamp(request_.updateHeight, 0, request_.height - toolbar - status);
    frame_.update = {0, toolbar, request_.width, update};
    const int between = request_.height - toolbar - update - status;
    const int pending = std::clamp(request_.pendingHeight, 0, between / 2);
    frame_.pending = {0, frame_.status.y - pending, request_.width, pending};
    const ui::Rect room = {0, toolbar + update, request_.width, between - pending};
    if (request_.listAboveMap) {
      putListAbove(room);
    } else {
      putListBeside(room);
    }
    return frame_;
  }

 private:
  int scaled(double logical) const { return ui::scaled(logical, request_.scale); }

  int part(const std::optional<double>& dragged, int ownPlace, int length,
           const Least& least) const {
    const int usable = std::max(length - divider_, 0);
    return fitted(dragged ? scaledShare(*dragged, usable) : ownPlace, usable, least);
  }

  void putListBeside(const ui::Rect& room) {
    const int own = std::max(scaledShare(kColumnShare, room.w), scaled(kColumnWidth));
    const int width = part(request_.dividers.column, own, room.w, {leastRowWidth_, leastMapSide_});
    const Split sides = splitAcross(room, width, divider_);
    frame_.mainDivider = sides.divider;
    frame_.map = sides.second;
    frame_.list = sides.first;
    if (!request_.showKinds) return;
    const int list =
        part(request_.dividers.listOverKinds, scaledShare(kListOverKindsShare, room.h - divider_),
             room.h, {leastRowsHeight_, leastRowsHeight_});
    const Split column = splitDown(sides.first, list, divider_);
    frame_.list = column.first;
    frame_.kindsDivider = column.divider;
    frame_.kinds = column.second;
  }

  void putListAbove(const ui::Rect& room) {
    const int own = scaledShare(kListHeightShare, room.h);
    const int height =
        part(request_.dividers.listHeight, own, room.h, {leastRowsHeight_, leastMapSide_});
    const Split halves = splitDown(room, height, divider_);
    frame_.list = halves.first;
    frame_.mainDivider = halves.divider;
    frame_.map = halves.second;
    if (!request_.showKinds) return;
    const int map = part(request_.dividers.mapBesideKinds, room.w - divider_ - scaled(kKindsWidth),
                         room.w, {leastMapSide_, leastRowWidth_});
    const Split below = splitAcross(halves.second, map, divider_);
    frame_.map = below.first;
    frame_.kindsDivider = below.divider;
    frame_.kinds = below.second;
  }

  const FrameRequest& request_;
  const int divider_;
  const int leastRowWidth_;
  const int leastRowsHeight_;
  const int leastMapSide_;
  FrameLayout frame_;
};

}  // namespace

ui::Rect toolbarRect(int width, int height, double scale, int lineHeight) {
  const int own =
      lineHeight + ui::scaled(kButtonPadding, scale) + 2 * ui::scaled(kToolbarPadding, scale);
  return {0, 0, width, std::min(own, height)};
}

FrameLayout layOutFrame(const FrameRequest& request) { return FrameBuilder(request).build(); }

}  // namespace app
