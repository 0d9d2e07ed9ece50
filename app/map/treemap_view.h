#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "app/map/hover_card.h"
#include "app/map/treemap_picture.h"
#include "app/model/map_focus.h"
#include "app/model/selection.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/style.h"

namespace app {

/// The map in the window: the picture of the focused folder with the outlines of what is selected
/// and of what the pointer is on, and the card of an item that the pointer rests on. Window thread
/// only.
class TreemapView {
 public:
  /// What is seen has changed.
  std::function<void()> onChanged;
  /// This item was selected here: where it is in the tree is to be shown.
  std::function<void(sizewalk::NodeId)> onPicked;
  /// A secondary press on an item, which is selected now, at (x, y) of the window.
  std::function<void(sizewalk::NodeId, int x, int y)> onContextMenu;

  /// All of them outlive the view.
  TreemapView(const ui::Style& style, TreemapPicture& picture, MapFocus& focus,
              Selection& selection)
      : style_(style), picture_(picture), focus_(focus), selection_(selection), card_(style) {}

  /// The picture or the selection may be another one: looks at both anew, before painting.
  void refresh();
  /// Forgets pointer and card: another scan is shown.
  void reset();
  /// Whether keys come here; a ring says so.
  void setFocused(bool focused) { focused_ = focused; }

  void paint(ui::Canvas& canvas) const;
  /// The card lies over everything else and is drawn last.
  void paintCard(ui::Canvas& canvas) const { card_.paint(canvas); }

  void press(const ui::MouseEvent& event);
  void motion(const ui::MouseEvent& event, std::int64_t nowMs);
  void leave();
  void wheel(const ui::MouseEvent& event, int dy);
  /// True when the key means something here.
  bool key(const ui::KeyEvent& event);
  /// Time passes. `bounds` is the room that the card may take.
  void tick(std::int64_t nowMs, const ui::Rect& bounds);
  /// No card is shown until the pointer moves again. True when there was one to hide.
  bool hideCard();

  /// The item under the pointer; nothing on merged items and on what is beside the tree.
  std::optional<sizewalk::NodeId> hovered() const;

 private:
  const TreemapBlock* blockAt(int x, int y) const;
  std::optional<sizewalk::NodeId> nodeAt(int x, int y) const;
  std::optional<ui::Rect> outlineOf(sizewalk::NodeId node) const;
  void findHovered();
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
  void paintSelected(ui::Canvas& canvas) const;
  void paintRing(ui::Canvas& canvas) const;
  void changed() const;

  struct Pointer {
    int x;
    int y;
    /// Since when it has been there, in milliseconds.
    std::int64_t sinceMs;
    /// A card comes when it has been there for long enough.
    bool awaitsCard = true;
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
  ui::Rect cardBounds_;
  std::optional<Pointer> pointer_;
  std::optional<TreemapBlock> hoveredBlock_;
  std::vector<ui::Rect> selected_;
  std::optional<Press> lastPress_;
  bool focused_ = false;
};

/// The pixels that a rectangle of the map is drawn on: each edge rounded half away from zero, as
/// the shading does it.
ui::Rect pixelRect(const MapRect& rect);

}  // namespace app
