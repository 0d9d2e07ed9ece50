#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "ui/button.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/arrival_guard.h"
#include "ui/widgets/view.h"

namespace ui {

/// A view, or a kind of view such as a list, with buttons in it. It says where they are and what
/// they do; which one the pointer is over, holds down or has pressed is known here. A button acts
/// when the primary mouse button is let go over the one that it was pressed on. One that came under
/// a resting pointer takes no press at once, as `ArrivalGuard` has it. Window thread only.
template <typename Base = View>
class ButtonView : public Base {
 public:
  using Base::Base;

  void press(const MouseEvent& event) override;
  void motion(const MouseEvent& event) override;
  void release(const MouseEvent& event) override;
  void leave() override;
  void tick(std::int64_t nowMs) override;
  void pointerSeen(int x, int y) override;
  void pointerLost() override { guard_.forgetPointer(); }

 protected:
  /// The view numbers its buttons as it likes, but a number keeps its meaning.
  using Control = ArrivalGuard::Control;
  using Places = ArrivalGuard::Places;

  /// Where the buttons are by now; of two that overlap the first one is pressed.
  virtual Places buttonPlaces() const = 0;
  virtual void act(Control control) = 0;
  /// What of the window looks different when the pointer comes on to the button, which is at
  /// `place`, or leaves it.
  virtual Rect reachOf(Control /*control*/, const Rect& place) const { return place; }
  /// The button goes down.
  virtual void pressTaken(Control /*control*/) {}

  bool bringUpToDate() override;
  /// The buttons that there are by now take presses at once.
  void settleButtons();
  /// All buttons are new where they are, so that none takes a press at once.
  void unsettleButtons();
  /// What is pressed is gone or means something else.
  void forgetPress() { presses_.cancel(); }
  bool hovered(Control control) const { return presses_.hovered(control); }
  /// The button as the pointer has it look.
  Button button(Control control, const Rect& rect, std::string text) const;

 private:
  static constexpr int kPrimaryButton = 1;

  bool placeButtons();
  void findChanges();
  void buttonChanged(PressTracker::Control control);
  PressTracker::Control buttonAt(int x, int y) const;

  Places places_;
  PressTracker presses_;
  /// As the last frame shows them.
  PressTracker shownPresses_;
  ArrivalGuard guard_;
  /// Where the pointer is, while it is on the view.
  std::optional<std::pair<int, int>> pointer_;
};

/// What a view shows and its rectangle change one after the other: only what comes of both counts,
/// so this is called when it does. True when another button is under the pointer.
template <typename Base>
bool ButtonView<Base>::placeButtons() {
  places_ = buttonPlaces();
  guard_.place(places_);
  return presses_.motion(pointer_ ? buttonAt(pointer_->first, pointer_->second) : std::nullopt);
}

template <typename Base>
PressTracker::Control ButtonView<Base>::buttonAt(int x, int y) const {
  for (const auto& [control, rect] : places_) {
    if (rect.contains(x, y)) return control;
  }
  return std::nullopt;
}

template <typename Base>
bool ButtonView<Base>::bringUpToDate() {
  placeButtons();
  findChanges();
  return Base::bringUpToDate();
}

/// A view whose buttons are elsewhere now has said that all of it looks different.
template <typename Base>
void ButtonView<Base>::findChanges() {
  const PressTracker before = std::exchange(shownPresses_, presses_);
  if (before == presses_) return;
  for (const auto& control : {before.under(), before.held(), presses_.under(), presses_.held()}) {
    buttonChanged(control);
  }
}

template <typename Base>
void ButtonView<Base>::buttonChanged(PressTracker::Control control) {
  for (const auto& [placed, rect] : places_) {
    if (placed == control) this->changed(reachOf(placed, rect));
  }
}

template <typename Base>
void ButtonView<Base>::settleButtons() {
  placeButtons();
  guard_.settle();
}

template <typename Base>
void ButtonView<Base>::unsettleButtons() {
  guard_ = {};
  placeButtons();
}

template <typename Base>
void ButtonView<Base>::press(const MouseEvent& event) {
  if (event.button != kPrimaryButton) return;
  pointer_ = {event.x, event.y};
  placeButtons();
  const auto control = buttonAt(event.x, event.y);
  const bool taken = control && guard_.takesPress(*control, event.x, event.y, event.timeMs);
  if (taken) {
    presses_.press(control);
    pressTaken(*control);
  }
  this->changed();
}

template <typename Base>
void ButtonView<Base>::motion(const MouseEvent& event) {
  Base::motion(event);
  pointer_ = {event.x, event.y};
  const bool other = placeButtons();
  guard_.pointerAt(event.x, event.y);
  if (other) this->needsFrame();
}

template <typename Base>
void ButtonView<Base>::release(const MouseEvent& event) {
  Base::release(event);
  if (event.button != kPrimaryButton || !presses_.holding()) return;
  placeButtons();
  const auto control = presses_.release(buttonAt(event.x, event.y));
  this->changed();
  if (control) act(*control);
}

template <typename Base>
void ButtonView<Base>::leave() {
  Base::leave();
  pointer_.reset();
  if (presses_.leave()) this->needsFrame();
}

template <typename Base>
void ButtonView<Base>::tick(std::int64_t nowMs) {
  Base::tick(nowMs);
  if (placeButtons()) this->needsFrame();
  guard_.tick(nowMs);
}

template <typename Base>
void ButtonView<Base>::pointerSeen(int x, int y) {
  if (placeButtons()) this->needsFrame();
  guard_.pointerAt(x, y);
}

template <typename Base>
Button ButtonView<Base>::button(Control control, const Rect& rect, std::string text) const {
  return {.rect = rect,
          .text = std::move(text),
          .hovered = presses_.hovered(control),
          .pressed = presses_.pressed(control)};
}

}  // namespace ui
