#include "app/dialogs/folder_chooser.h"

#include <algorithm>
#include <utility>

#include "app/model/format.h"
#include "ui/keys.h"
#include "ui/scroll_bar.h"
#include "ui/text.h"
#include "ui/text_fit.h"
#include "ui/typed_text.h"
#include "ui/window.h"

namespace app {

namespace {

constexpr int kPrimaryButton = 1;
/// A folder that has not answered by then is said to be waited for.
constexpr std::int64_t kSlowMs = 300;

// Logical pixels.
constexpr double kWidth = 720;
constexpr double kHeight = 480;
constexpr double kGap = 8;
constexpr double kPlacesWidth = 170;
constexpr double kBoxRadius = 5;
constexpr double kPlaceRadius = 6;
constexpr double kBoxPadding = 8;        // beside the texts in boxes and rows
constexpr double kBoxExtraHeight = 10;   // of the path, over its text
constexpr double kPlaceExtraHeight = 6;  // over a row
constexpr double kUpWidth = 32;

ui::Rect inset(const ui::Rect& rect, int dx, int dy = 0) {
  return {rect.x + dx, rect.y + dy, std::max(0, rect.w - 2 * dx), std::max(0, rect.h - 2 * dy)};
}

}  // namespace

FolderChooser::FolderChooser(const ui::Style& style, std::vector<FolderPlace> places,
                             FolderLister& lister)
    : ui::Dialog(style), places_(std::move(places)), lister_(lister) {
  lister_.onListed = [this](const std::string& path, FolderListing listing) {
    // The user may have left that folder meanwhile, or come back to it.
    if (path == path_ && !listing_) listed(std::move(listing));
  };
  setButtons({{"Cancel", ui::ButtonKind::Plain, [this] { close(); }},
              {"Scan This Folder", ui::ButtonKind::Default, [this] { scan(); }}});
  giveKeyboardTo(kList);
  placesColumn_.setCount(places_.size());
  goTo(places_.front().path);
}

FolderChooser::~FolderChooser() { lister_.onListed = nullptr; }

// What is shown and chosen.

void FolderChooser::goTo(std::string path) {
  path_ = std::move(path);
  listing_.reset();
  selected_.reset();
  slow_ = false;
  typeAhead_.forget();
  listColumn_.setCount(0);
  askedMs_ = ui::Window::now();
  if (auto listing = lister_.list(path_)) listed(std::move(*listing));
  changed();
}

void FolderChooser::listed(FolderListing listing) {
  listing_ = std::move(listing);
  listColumn_.setCount(listing_->subFolders.size());
  changed();
}

void FolderChooser::goUp() {
  if (path_ != "/") goTo(pathAround(path_));
}

void FolderChooser::goInto(std::size_t row) {
  goTo(pathInside(path_, listing_->subFolders[row].name));
}

void FolderChooser::select(std::size_t row) {
  selected_ = row;
  listColumn_.reveal(row);
  changed();
}

void FolderChooser::scan() {
  // Copies: closing destroys the chooser.
  const auto chosen = onChosen;
  const std::string path =
      selected_ ? pathInside(path_, listing_->subFolders[*selected_].name) : path_;
  close();
  if (chosen) chosen(path);
}

std::string FolderChooser::message() const {
  if (!listing_) return slow_ ? "Waiting for this folder…" : "";
  if (!listing_->readable) return "This folder cannot be read.";
  return listing_->subFolders.empty() ? "No folders here." : "";
}

void FolderChooser::tick(std::int64_t nowMs) {
  if (listing_ || slow_ || nowMs - askedMs_ < kSlowMs) return;
  slow_ = true;
  changed();
}

// Where things are.

ui::Rect FolderChooser::wantedPanel(int /*width*/, int /*height*/) const {
  return {0, 0, style().scaled(kWidth), style().scaled(kHeight)};
}

void FolderChooser::layOutContent(const ui::Rect& content) {
  const int gap = style().scaled(kGap);
  heading_ = {content.x, content.y, content.w, style().heading().height};
  const int pathTop = heading_.y + heading_.h + gap;
  const int pathHeight = style().lineHeight() + style().scaled(kBoxExtraHeight);
  const int upWidth = style().scaled(kUpWidth);
  pathBox_ = {content.x, pathTop, std::max(0, content.w - upWidth - gap), pathHeight};
  upButton_ = {pathBox_.x + pathBox_.w + gap, pathTop, upWidth, pathHeight};

  const int top = pathTop + pathHeight + gap;
  const int height = std::max(0, content.y + content.h - top);
  const int placesWidth = std::min(style().scaled(kPlacesWidth), content.w / 2);
  placesColumn_.setView({content.x, top, placesWidth, height},
                        style().rowHeight() + style().scaled(kPlaceExtraHeight));
  const int listX = content.x + placesWidth + gap;
  listFrame_ = {listX, top, std::max(0, content.x + content.w - listX), height};
  const int ring = ui::focusRingWidth(style().scale());
  listColumn_.setView(inset(listFrame_, ring, ring), style().rowHeight());
}

ui::PressTracker::Control FolderChooser::controlAt(int x, int y) const {
  if (upButton_.contains(x, y) && path_ != "/") return kUp;
  return std::nullopt;
}

// The pointer.

void FolderChooser::press(const ui::MouseEvent& event) {
  if (event.button == kPrimaryButton && pressColumns(event)) {
    typeAhead_.forget();
    changed();
    return;
  }
  ui::Dialog::press(event);
}

/// Rows act when they are pressed, not when they are let go: a second press follows.
bool FolderChooser::pressColumns(const ui::MouseEvent& event) {
  if (placesColumn_.pressBar(event.x, event.y) || listColumn_.pressBar(event.x, event.y)) {
    return true;
  }
  if (const auto place = placesColumn_.rowAt(event.x, event.y)) {
    giveKeyboardTo(kPlaces);
    currentPlace_ = *place;
    goTo(places_[*place].path);
    return true;
  }
  if (const auto row = listColumn_.rowAt(event.x, event.y)) {
    giveKeyboardTo(kList);
    pressRow(*row, event.clicks);
    return true;
  }
  return false;
}

void FolderChooser::pressRow(std::size_t row, int clicks) {
  if (clicks >= 2) {
    goInto(row);
  } else {
    select(row);
  }
}

void FolderChooser::motion(const ui::MouseEvent& event) {
  ui::Dialog::motion(event);
  const bool places = placesColumn_.motion(event.x, event.y);
  if (listColumn_.motion(event.x, event.y) || places) changed();
}

void FolderChooser::release(const ui::MouseEvent& event) {
  if (event.button == kPrimaryButton) {
    placesColumn_.release();
    listColumn_.release();
  }
  ui::Dialog::release(event);  // after which the chooser may be gone
}

void FolderChooser::leave() {
  ui::Dialog::leave();
  const bool places = placesColumn_.leave();
  if (listColumn_.leave() || places) changed();
}

void FolderChooser::wheel(const ui::MouseEvent& event, int dy) {
  if (placesColumn_.view().contains(event.x, event.y)) {
    placesColumn_.wheel(dy);
  } else if (listColumn_.view().contains(event.x, event.y)) {
    listColumn_.wheel(dy);
  }
  changed();
}

// Keys.

bool FolderChooser::key(const ui::KeyEvent& event) {
  if (keyAnywhere(event)) return true;
  const bool taken = focusedControl() == kList     ? keyInList(event)
                     : focusedControl() == kPlaces ? keyInPlaces(ui::key::plain(event.keysym))
                                                   : false;
  return taken || ui::Dialog::key(event);
}

bool FolderChooser::keyAnywhere(const ui::KeyEvent& event) {
  const ui::key::Keysym key = ui::key::plain(event.keysym);
  if (key == ui::key::kBackSpace || (key == ui::key::kUp && event.ctrl)) {
    goUp();
    return true;
  }
  if (key == ui::key::kReturn && event.ctrl) {
    scan();
    return true;
  }
  return false;
}

bool FolderChooser::keyInPlaces(ui::key::Keysym key) {
  if (key == ui::key::kRight) {
    giveKeyboardTo(kList);
    return true;
  }
  const auto row = placesColumn_.rowAfterKey(key, currentPlace_);
  if (!row) return false;
  currentPlace_ = *row;
  placesColumn_.reveal(*row);
  changed();
  return true;
}

bool FolderChooser::keyInList(const ui::KeyEvent& event) {
  if (!event.ctrl && typeAhead(event)) return true;
  const ui::key::Keysym key = ui::key::plain(event.keysym);
  if (key == ' ') return true;  // what it would do is done: the row is selected
  if (key == ui::key::kLeft) {
    giveKeyboardTo(kPlaces);
    return true;
  }
  const auto row = listColumn_.rowAfterKey(key, selected_);
  if (!row) return false;
  typeAhead_.forget();
  select(*row);
  return true;
}

/// Selects the next folder whose name begins with what was typed, round the end if need be. The
/// first letter leaves the selected one, those that follow may stay.
bool FolderChooser::typeAhead(const ui::KeyEvent& event) {
  const std::int64_t now = ui::Window::now();
  const std::string text = ui::typedText(event);
  if (!typeAhead_.accepts(text, now)) return false;
  const bool fresh = typeAhead_.type(text, now);
  const std::size_t start = selected_ ? *selected_ + (fresh ? 1 : 0) : 0;
  const auto nameOf = [&](std::size_t row) { return listing_->subFolders[row].name; };
  if (const auto found = typeAhead_.find(listColumn_.count(), start, nameOf)) select(*found);
  return true;
}

bool FolderChooser::act(int control) {
  switch (control) {
    case kUp:
      goUp();
      return true;
    case kPlaces:
      goTo(places_[currentPlace_].path);
      return true;
    default:
      if (!selected_) return false;
      goInto(*selected_);
      return true;
  }
}

// Drawing.

void FolderChooser::paintContent(ui::Canvas& canvas) const {
  ui::drawText(canvas, heading_, "Choose a folder to scan", style().heading(),
               style().palette().text);
  paintPath(canvas);
  paintPlaces(canvas);
  paintList(canvas);
}

void FolderChooser::paintPath(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  ui::fillOutlined(canvas, pathBox_, style().scaled(kBoxRadius), 1, palette.border, palette.base);
  const ui::Rect room = inset(pathBox_, style().scaled(kBoxPadding));
  const std::string text =
      ui::shortenedAtStart(displayName(path_), room.w,
                           [this](std::string_view part) { return style().textWidth(part); });
  ui::drawText(canvas, room, text, style().body(), palette.text);
  ui::paintButton(canvas,
                  {.rect = upButton_,
                   .text = "↑",
                   .hovered = presses().hovered(kUp),
                   .pressed = presses().pressed(kUp),
                   .focused = focusedControl() == kUp,
                   .disabled = path_ == "/"},
                  style().body(), palette);
}

void FolderChooser::paintPlaces(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  canvas.pushClip(placesColumn_.view());
  const ui::RowRange seen = placesColumn_.visible();
  for (std::size_t row = seen.first; row < seen.last; ++row) paintPlace(canvas, row);
  canvas.popClip();
  ui::drawScrollBar(canvas, placesColumn_.scroller(), palette.raised, palette.dimText);
}

void FolderChooser::paintPlace(ui::Canvas& canvas, std::size_t row) const {
  const ui::Palette& palette = style().palette();
  const FolderPlace& place = places_[row];
  const ui::Rect rect = placesColumn_.rowRect(row);
  const int radius = style().scaled(kPlaceRadius);
  const bool shown = place.path == path_;
  const bool highlighted = shown || placesColumn_.hovered() == row;
  const ui::Colour fill = shown ? palette.pressed : highlighted ? palette.raised : palette.window;
  if (focusedControl() == kPlaces && currentPlace_ == row) {
    ui::fillOutlined(canvas, rect, radius, ui::focusRingWidth(style().scale()), palette.accent,
                     fill);
  } else if (highlighted) {
    canvas.fillRoundRect(rect, radius, fill);
  }
  ui::drawText(canvas, inset(rect, style().scaled(kBoxPadding)), displayName(place.label),
               style().body(), palette.text);
}

void FolderChooser::paintList(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  const bool hasKeyboard = focusedControl() == kList;
  ui::fillOutlined(canvas, listFrame_, 0, hasKeyboard ? ui::focusRingWidth(style().scale()) : 1,
                   hasKeyboard ? palette.accent : palette.border, palette.base);
  canvas.pushClip(listColumn_.view());
  const ui::RowRange seen = listColumn_.visible();
  for (std::size_t row = seen.first; row < seen.last; ++row) paintRow(canvas, row);
  ui::drawText(canvas, listColumn_.view(), message(), style().body(), palette.dimText,
               ui::Align::Centre);
  ui::drawScrollBar(canvas, listColumn_.scroller(), palette.raised, palette.dimText);
  canvas.popClip();
}

void FolderChooser::paintRow(ui::Canvas& canvas, std::size_t row) const {
  const ui::Palette& palette = style().palette();
  const SubFolder& folder = listing_->subFolders[row];
  const ui::Rect rect = listColumn_.rowRect(row);
  const bool selected = selected_ == row;
  if (selected) {
    canvas.fillRect(rect, palette.accent);
  } else if (listColumn_.hovered() == row) {
    canvas.fillRect(rect, style().hoverVeil());
  }
  const ui::Colour colour = selected            ? palette.accentText
                            : folder.accessible ? palette.text
                                                : palette.dimText;
  ui::drawText(canvas, inset(rect, style().scaled(kBoxPadding)), displayName(folder.name),
               style().body(), colour);
}

}  // namespace app
