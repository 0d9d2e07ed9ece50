#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/map/hover_card.h"
#include "app/map/notice_card.h"
#include "app/map/space_labels.h"
#include "app/map/treemap_picture.h"
#include "app/model/map_focus.h"
#include "app/model/scan_status.h"
#include "app/model/selection.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/style.h"
#include "ui/widgets/view.h"

namespace app {

/// The map in the window: the picture of the focused folder, the outline of what the pointer is on,
/// and the card of an item that the pointer rests on. Window thread only.
class TreemapView : public ui::View {
 public:
  /// This item was selected here: where it is in the tree is to be shown.
  std::function<void(sizewalk::NodeId)> onPicked;
  /// A secondary press on an item, which is selected now, at (x, y) of the window.
  std::function<void(sizewalk::NodeId, int x, int y)> onContextMenu;

  /// All of them outlive the view.
  TreemapView(const ui::Style& style, TreemapPicture& picture, MapFocus& focus,
              Selection& selection);

  /// The picture may be another one: looks at it anew, before painting.
  void refresh();
  /// Forgets pointer and card: another scan is shown.
  void reset();
  /// Of the scan that is shown: what the map says where it has nothing to show depends on it.
  void setScanStatus(const ScanStatus& status);

  bool takesKeyboard() const override { return true; }
  void paint(ui::Canvas& canvas) const override;
  /// The card.
  void paintOver(ui::Canvas& canvas) const override { card_.paint(canvas); }
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void leave() override;
  /// One level however many steps, and none so soon after the last one that a burst of steps would
  /// fall through all of them.
  void wheel(const ui::MouseEvent& event, int dy) override;
  bool key(const ui::KeyEvent& event) override;
  void tick(std::int64_t nowMs) override;
  bool cardShown() const { return card_.shown(); }
  /// No card is shown until the pointer moves again. True when there was one to hide.
  bool hideCard();

  /// The item under the pointer; nothing on merged items, on what is beside the tree, and on what
  /// has ceased to be visible since the picture was made.
  std::optional<sizewalk::NodeId> hovered() const;
  /// What the map says where it has nothing to show; empty where it has.
  const std::string& notice() const { return notice_.text(); }

 protected:
  void layOut() override;
  bool bringUpToDate() override;

 private:
  /// What the map looks like, apart from its place and its ring.
  struct Look {
    std::uint64_t picture = 0;
    std::vector<SpaceLabel> labels;
    std::string notice;
    /// Of what the pointer is on, in the window.
    std::optional<ui::Rect> outline;
    std::optional<MapCard> card;
    ui::Rect cardPlace;
  };

  Look look() const;
  void outlineChanged(const std::optional<ui::Rect>& outline);
  /// Null, too, where the block's item is not visible any more; of merged items the first speaks
  /// for all.
  const PictureBlock* blockAt(int x, int y) const;
  std::optional<sizewalk::NodeId> nodeAt(int x, int y) const;
  /// On the map, wherever that is in the window.
  std::optional<ui::Rect> outlineOf(sizewalk::NodeId node) const;
  ui::Rect inWindow(const ui::Rect& onMap) const;
  void findHovered();
  /// What is written on the map.
  void findTexts();
  void findNotice();
  void findSpaceLabels();
  void pick(const ui::MouseEvent& event);
  void goTowards(const ui::MouseEvent& event);
  void openContextMenu(const ui::MouseEvent& event);
  /// Has the card tell of the item under the pointer as it is by now.
  void fillCard();
  bool moveSelection(int dx, int dy);
  /// The next item on that side of a place, past all that is no item.
  std::optional<sizewalk::NodeId> nodeBeyond(const ui::Rect& rect, int dx, int dy) const;
  std::optional<sizewalk::NodeId> firstNode() const;
  int lineWidth() const { return std::max(1, style_.scaled(1)); }
  void paintSpaceLabels(ui::Canvas& canvas) const;
  void paintHovered(ui::Canvas& canvas) const;
  void paintRing(ui::Canvas& canvas) const;

  struct Pointer {
    int x;
    int y;
    /// Since when it has been there, in milliseconds.
    std::int64_t sinceMs;
    /// A card comes when it has been there for long enough: it has moved since something else, a
    /// menu or another scan, was there.
    bool awaitsCard;
  };

  /// The second of two quick ones counts as double only on the same item: a running scan may have
  /// put another one under the pointer.
  struct Press {
    int button;
    std::optional<sizewalk::NodeId> node;
    friend bool operator==(const Press&, const Press&) = default;
  };

  const ui::Style& style_;
  TreemapPicture& picture_;
  MapFocus& focus_;
  Selection& selection_;
  HoverCard card_;
  NoticeCard notice_;
  std::vector<SpaceLabel> spaceLabels_;
  ScanStatus status_;
  std::optional<Pointer> pointer_;
  std::optional<PictureBlock> hoveredBlock_;
  std::optional<Press> lastPress_;
  /// What the last frame shows.
  Look shown_;
  /// When the wheel last led to another level.
  std::optional<std::uint32_t> lastLevelMs_;
};

}  // namespace app
