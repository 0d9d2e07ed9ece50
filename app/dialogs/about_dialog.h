#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/dialogs/about_contents.h"
#include "ui/connection.h"
#include "ui/paragraph.h"
#include "ui/scroller.h"
#include "ui/widgets/arrival_guard.h"
#include "ui/widgets/dialog.h"

namespace app {

/// Says what the program is, with links to the web. A press outside closes it. What the panel has
/// no room for is scrolled to; the button stays.
class AboutDialog : public ui::Dialog {
 public:
  /// A link was chosen. The dialog stays open.
  std::function<void(const std::string& address)> onLink;

  /// `connection` outlives the dialog. `update` is one that is known already.
  AboutDialog(ui::Connection& connection, const ui::Style& style,
              std::optional<UpdateNotice> update = std::nullopt);

  /// An update that has become known, or none any more; what has the keyboard keeps it.
  void setUpdate(std::optional<UpdateNotice> update);

  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void release(const ui::MouseEvent& event) override;
  void leave() override;
  void releasePointer() override;
  void wheel(const ui::MouseEvent& event, int dy) override;
  void tick(std::int64_t nowMs) override;
  /// Up, Down and the pages scroll.
  bool key(const ui::KeyEvent& event) override;
  /// A hand over links.
  ui::PointerShape pointer() const override;

  /// The links in the order of Tab.
  std::size_t linkCount() const { return links_.size(); }
  const LinkedText& link(std::size_t number) const;
  /// Where it is; outside of `viewRect` when it is scrolled away.
  ui::Rect linkRect(std::size_t number) const;
  /// The lines of the update's message.
  const std::vector<std::string>& messageLines() const { return places_.message; }
  /// The part of the panel above the button.
  const ui::Rect& viewRect() const { return scroller_.view(); }

 protected:
  bool bringUpToDate() override;
  ui::Rect wantedPanel(int width, int height) const override;
  void layOutContent(const ui::Rect& content) override;
  void paintContent(ui::Canvas& canvas) const override;
  int controlCount() const override { return static_cast<int>(links_.size()); }
  ui::PressTracker::Control controlAt(int x, int y) const override;
  bool act(int control) override;
  void pressedOutside() override { close(); }
  void keyboardMoved() override;

 private:
  /// A text on a line of its own or beside others.
  struct Piece {
    LinkedText text;
    ui::Rect rect;
  };
  /// Where everything is, from the top left of the content on.
  struct Places {
    ui::Rect heading;
    ui::Paragraph description;
    int descriptionTop = 0;
    ui::Rect version;
    std::vector<std::string> message;
    ui::Rect messageRect;
    std::vector<Piece> pieces;
    int height = 0;
  };

  Places placesIn(int width) const;
  void placeUpdate(int width, int* y, Places* places) const;
  void placeMaker(int width, int* y, Places* places) const;
  std::vector<std::string> messageLinesIn(int width) const;
  ui::Rect shownRect(const ui::Rect& place) const;
  /// Counted from the last link: that of an update is the first, and may come later.
  std::int64_t guardNumber(std::int64_t link) const {
    return static_cast<std::int64_t>(links_.size()) - link;
  }
  void findLinks();
  void placeControls();
  void hoverAnew();
  void scroll(int distance);
  std::optional<int> distanceOf(unsigned long keysym) const;
  void paintTexts(ui::Canvas& canvas) const;
  void paintLink(ui::Canvas& canvas, std::size_t number) const;

  ui::Connection& connection_;
  AboutContents contents_;
  Places places_;
  /// The pieces that are links.
  std::vector<std::size_t> links_;
  ui::Scroller scroller_;
  ui::ArrivalGuard guard_;
  /// What the pointer did last, unless it left.
  std::optional<ui::MouseEvent> pointer_;
};

}  // namespace app
