#include "app/dialogs/folder_chooser.h"

#include <algorithm>
#include <utility>

#include "app/model/format.h"
#include "ui/keys.h"
#include "ui/steady_clock.h"
#include "ui/text.h"
#include "ui/text_fit.h"

namespace app {

namespace {

/// A folder that has not answered by then is said to be waited for.
constexpr std::int64_t kSlowMs = 300;

// Logical pixels.
constexpr double kWidth = 720;
constexpr double kHeight = 480;
constexpr double kChooserGap = 8;
constexpr double kPlacesWidth = 170;
constexpr double kBoxRadius = 5;
constexpr double kBoxExtraHeight = 10;  // of the path, over its text
constexpr double kUpWidth = 32;

ui::Rect inside(const ui::Rect& frame, int width) {
  return {frame.x + width, frame.y + width, std::max(0, frame.w - 2 * width),
          std::max(0, frame.h - 2 * width)};
}

}  // namespace

FolderChooser::FolderChooser(const ui::Style& style, std::vector<FolderPlace> places,
                             SubFolderReader& reader)
    : ui::Dialog(style),
      reader_(reader),
      placesColumn_(style, std::move(places)),
      listColumn_(style) {
  reader_.onRead = [this](const std::string& path, SubFolders answer) {
    // The user may have left that folder meanwhile, or come back to it.
    if (path == path_ && !subFolders()) listColumn_.show(std::move(answer));
  };
  setButtons({{"Cancel", ui::ButtonKind::Plain, [this] { close(); }},
              {"Scan This Folder", ui::ButtonKind::Default, [this] { scan(); }}});
  placesColumn_.onChanged = [this] { changed(); };
  listColumn_.onChanged = [this] { changed(); };
  giveKeyboardTo(kList);
  goTo(placesColumn_.current().path);
}

FolderChooser::~FolderChooser() { reader_.onRead = nullptr; }

// What is shown and chosen.

void FolderChooser::goTo(std::string path) {
  path_ = std::move(path);
  placesColumn_.setShownPath(path_);
  listColumn_.clear();
  slow_ = false;
  askedMs_ = ui::steadyMs();
  if (auto answer = reader_.read(path_)) listColumn_.show(std::move(*answer));
}

void FolderChooser::goUp() {
  if (path_ != "/") goTo(pathAround(path_));
}

void FolderChooser::goInto(const std::string& name) { goTo(pathInside(path_, name)); }

void FolderChooser::scan() {
  // Copies: closing destroys the chooser.
  const auto chosen = onChosen;
  const auto name = listColumn_.selectedName();
  const std::string path = name ? pathInside(path_, *name) : path_;
  close();
  if (chosen) chosen(path);
}

std::string FolderChooser::message() const {
  if (!subFolders()) return slow_ ? "Waiting for this folder…" : "";
  if (!subFolders()->readable) return "This folder cannot be read.";
  return subFolders()->folders.empty() ? "No folders here." : "";
}

void FolderChooser::tick(std::int64_t nowMs) {
  if (subFolders() || slow_ || nowMs - askedMs_ < kSlowMs) return;
  slow_ = true;
  changed();
}

// Where things are.

ui::Rect FolderChooser::wantedPanel(int /*width*/, int /*height*/) const {
  return {0, 0, style().scaled(kWidth), style().scaled(kHeight)};
}

void FolderChooser::layOutContent(const ui::Rect& content) {
  const int gap = style().scaled(kChooserGap);
  heading_ = {content.x, content.y, content.w, style().heading().height};
  const int pathTop = heading_.y + heading_.h + gap;
  const int pathHeight = style().lineHeight() + style().scaled(kBoxExtraHeight);
  const int upWidth = style().scaled(kUpWidth);
  pathBox_ = {content.x, pathTop, std::max(0, content.w - upWidth - gap), pathHeight};
  upButton_ = {pathBox_.x + pathBox_.w + gap, pathTop, upWidth, pathHeight};

  const int top = pathTop + pathHeight + gap;
  const int height = std::max(0, content.y + content.h - top);
  const int placesWidth = std::min(style().scaled(kPlacesWidth), content.w / 2);
  placesColumn_.setRect({content.x, top, placesWidth, height});
  const int listX = content.x + placesWidth + gap;
  listFrame_ = {listX, top, std::max(0, content.x + content.w - listX), height};
  listColumn_.setRect(inside(listFrame_, ui::focusRingWidth(style().scale())));
}

ui::PressTracker::Control FolderChooser::controlAt(int x, int y) const {
  if (upButton_.contains(x, y) && path_ != "/") return kUp;
  return std::nullopt;
}

// The pointer.

void FolderChooser::press(const ui::MouseEvent& event) {
  if (event.button == ui::kPrimaryButton && pressColumns(event)) {
    listColumn_.forgetTyped();
  } else {
    ui::Dialog::press(event);
  }
}

/// Rows act when they are pressed, not when they are let go: a second press follows.
bool FolderChooser::pressColumns(const ui::MouseEvent& event) {
  if (placesColumn_.pressBar(event) || listColumn_.pressBar(event)) return true;
  if (const auto place = placesColumn_.rowAt(event.x, event.y)) {
    giveKeyboardTo(kPlaces);
    placesColumn_.setCurrent(*place);
    goTo(placesColumn_.current().path);
    return true;
  }
  if (const auto row = listColumn_.rowAt(event.x, event.y)) {
    giveKeyboardTo(kList);
    listColumn_.select(*row);
    if (event.clicks >= 2) goInto(*listColumn_.selectedName());
    return true;
  }
  return false;
}

void FolderChooser::motion(const ui::MouseEvent& event) {
  ui::Dialog::motion(event);
  placesColumn_.motion(event);
  listColumn_.motion(event);
}

void FolderChooser::release(const ui::MouseEvent& event) {
  placesColumn_.release(event);
  listColumn_.release(event);
  ui::Dialog::release(event);  // after which the chooser may be gone
}

void FolderChooser::leave() {
  ui::Dialog::leave();
  placesColumn_.leave();
  listColumn_.leave();
}

void FolderChooser::releasePointer() {
  ui::Dialog::releasePointer();
  placesColumn_.releasePointer();
  listColumn_.releasePointer();
}

void FolderChooser::wheel(const ui::MouseEvent& event, int dy) {
  if (placesColumn_.view().contains(event.x, event.y)) {
    placesColumn_.wheel(event, dy);
  } else if (listColumn_.view().contains(event.x, event.y)) {
    listColumn_.wheel(event, dy);
  }
}

// Keys.

bool FolderChooser::key(const ui::KeyEvent& event) {
  if (keyAnywhere(event)) return true;
  const bool taken = focusedControl() == kList     ? keyInList(event)
                     : focusedControl() == kPlaces ? keyInPlaces(event)
                                                   : false;
  return taken || ui::Dialog::key(event);
}

bool FolderChooser::keyAnywhere(const ui::KeyEvent& event) {
  const ui::key::Keysym key = ui::key::plain(event.keysym);
  if (key == ui::key::kBackSpace && listColumn_.key(event)) return true;
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

bool FolderChooser::keyInPlaces(const ui::KeyEvent& event) {
  if (placesColumn_.key(event)) return true;
  if (ui::key::plain(event.keysym) != ui::key::kRight) return false;
  giveKeyboardTo(kList);
  return true;
}

bool FolderChooser::keyInList(const ui::KeyEvent& event) {
  if (listColumn_.key(event)) return true;
  const ui::key::Keysym key = ui::key::plain(event.keysym);
  if (key == ui::key::kLeft) giveKeyboardTo(kPlaces);
  return key == ui::key::kLeft || key == ' ';  // what Space would do is done: the row is selected
}

bool FolderChooser::act(int control) {
  switch (control) {
    case kUp:
      goUp();
      return true;
    case kPlaces:
      goTo(placesColumn_.current().path);
      return true;
    default:
      if (!selected()) return false;
      goInto(*listColumn_.selectedName());
      return true;
  }
}

void FolderChooser::keyboardMoved() {
  placesColumn_.setFocused(focusedControl() == kPlaces);
  listColumn_.setFocused(focusedControl() == kList);
}

// Drawing.

void FolderChooser::paintContent(ui::Canvas& canvas) const {
  ui::drawText(canvas, heading_, "Choose a folder to scan", style().heading(),
               style().palette().text);
  paintPath(canvas);
  placesColumn_.paint(canvas);
  paintList(canvas);
}

void FolderChooser::paintPath(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  ui::fillOutlined(canvas, pathBox_, style().scaled(kBoxRadius), 1, palette.border, palette.base);
  const ui::Rect room = chooserTextPlace(style(), pathBox_);
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

void FolderChooser::paintList(ui::Canvas& canvas) const {
  const ui::Palette& palette = style().palette();
  const bool ringed = listColumn_.focused() && canvas.showsRings();
  ui::fillOutlined(canvas, listFrame_, 0, ringed ? ui::focusRingWidth(style().scale()) : 1,
                   ringed ? palette.accent : palette.border, palette.base);
  listColumn_.paint(canvas);
  canvas.pushClip(listColumn_.view());
  ui::drawText(canvas, listColumn_.view(), message(), style().body(), palette.dimText,
               ui::Align::Centre);
  canvas.popClip();
}

}  // namespace app
