#include "app/dialogs/chooser_columns.h"

#include <algorithm>
#include <utility>

#include "app/model/format.h"
#include "ui/button.h"
#include "ui/keys.h"
#include "ui/text.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kPlaceRadius = 6;
constexpr double kPlaceExtraHeight = 6;  // over a row
constexpr double kTextPadding = 8;

}  // namespace

ui::Rect chooserTextPlace(const ui::Style& style, const ui::Rect& box) {
  const int padding = style.scaled(kTextPadding);
  return {box.x + padding, box.y, std::max(0, box.w - 2 * padding), box.h};
}

// Places.

PlacesColumn::PlacesColumn(const ui::Style& style, std::vector<FolderPlace> places)
    : ui::RowList(style, style.rowHeight() + style.scaled(kPlaceExtraHeight)),
      places_(std::move(places)) {
  setCount(places_.size());
}

void PlacesColumn::setCurrent(std::size_t row) {
  current_ = row;
  changed();
}

void PlacesColumn::setShownPath(const std::string& path) {
  shownPath_ = path;
  changed();
}

bool PlacesColumn::key(const ui::KeyEvent& event) {
  const auto row = rowAfterKey(ui::key::plain(event.keysym), current_);
  if (!row) return false;
  reveal(*row);
  setCurrent(*row);
  return true;
}

void PlacesColumn::paintGround(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const {
  const ui::Palette& palette = style().palette();
  const int radius = style().scaled(kPlaceRadius);
  const bool shown = places_[row].path == shownPath_;
  const bool highlighted = shown || hoveredRow() == row;
  const ui::Colour fill = shown ? palette.pressed : highlighted ? palette.raised : palette.window;
  if (focused() && canvas.showsRings() && isCurrent(row)) {
    ui::fillOutlined(canvas, place, radius, ui::focusRingWidth(style().scale()), palette.accent,
                     fill);
  } else if (highlighted) {
    canvas.fillRoundRect(place, radius, fill);
  }
}

void PlacesColumn::paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const {
  ui::drawText(canvas, chooserTextPlace(style(), place), displayName(places_[row].label),
               style().body(), style().palette().text);
}

// Folders.

void SubFoldersColumn::clear() {
  subFolders_.reset();
  cursor_.reset();
  setCount(0);
  scrollToTop();
  changed();
}

void SubFoldersColumn::show(SubFolders subFolders) {
  subFolders_ = std::move(subFolders);
  cursor_.setCurrent(std::nullopt);  // what was typed while it came goes on
  setCount(subFolders_->folders.size());
  scrollToTop();
  changed();
}

void SubFoldersColumn::select(std::size_t row) {
  cursor_.setCurrent(row);
  reveal(row);
  changed();
}

std::optional<std::string> SubFoldersColumn::selectedName() const {
  if (!selected()) return std::nullopt;
  return subFolders_->folders[*selected()].name;
}

bool SubFoldersColumn::key(const ui::KeyEvent& event) {
  const auto nameAt = [this](std::size_t row) { return subFolders_->folders[row].name; };
  const auto search = cursor_.type(event, count(), selected(), nameAt);
  if (search.row) select(*search.row);
  if (search.taken) return true;
  const auto row = rowAfterKey(ui::key::plain(event.keysym), selected());
  if (!row) return false;
  forgetTyped();
  select(*row);
  return true;
}

void SubFoldersColumn::paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const {
  const ui::Palette& palette = style().palette();
  const SubFolder& folder = subFolders_->folders[row];
  const ui::Colour colour = isSelected(row)     ? palette.accentText
                            : folder.accessible ? palette.text
                                                : palette.dimText;
  ui::drawText(canvas, chooserTextPlace(style(), place), displayName(folder.name), style().body(),
               colour);
}

}  // namespace app
