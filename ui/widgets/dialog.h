#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ui/button.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/overlay.h"
#include "ui/widgets/style.h"

namespace ui {

/// A button of a dialog and what it does. The dialog may be gone when `action` returns.
struct DialogButton {
  std::string text;
  ButtonKind kind = ButtonKind::Plain;
  std::function<void()> action;
};

/// A panel over the window that has all input until it is closed. What all dialogs share is here:
/// the dimmed window, the panel in its middle, a row of buttons at the panel's lower right, and one
/// control that has the keyboard, which Tab moves. A dialog numbers its own controls from 0 in the
/// order of Tab; the buttons follow them. Window thread only; lengths are device pixels.
class Dialog : public Overlay {
 public:
  /// `style` outlives the dialog.
  explicit Dialog(const Style& style) : style_(style) {}

  void paint(Canvas& canvas) const override;

  void press(const MouseEvent& event) override;
  void motion(const MouseEvent& event) override;
  void release(const MouseEvent& event) override;
  void leave() override;
  /// Tab and Shift+Tab move the keyboard; Enter and Space act on what has it, Enter on the default
  /// button where that does nothing; Escape cancels. Other keys are the dialog's own.
  bool key(const KeyEvent& event) override;
  void releasePointer() override;

  const Rect& panel() const { return panel_; }
  /// The control that has the keyboard.
  int focusedControl() const { return focusedControl_; }
  const Rect& buttonRect(std::size_t button) const { return buttonRects_[button]; }

 protected:
  /// Height and width of the panel in a window of `width` x `height`; it is kept inside.
  virtual Rect wantedPanel(int width, int height) const = 0;
  /// Puts what is in the panel, apart from the buttons, into `content`.
  virtual void layOutContent(const Rect& content) = 0;
  virtual void paintContent(Canvas& canvas) const = 0;

  /// Controls of the dialog's own, and the one at a place.
  virtual int controlCount() const { return 0; }
  virtual PressTracker::Control controlAt(int /*x*/, int /*y*/) const { return std::nullopt; }
  /// A control of its own was pressed, or Enter or Space on it. False when Enter on it is meant for
  /// the default button.
  virtual bool act(int /*control*/) { return false; }
  virtual void cancel() { close(); }
  virtual void pressedOutside() {}
  /// Another control has the keyboard now.
  virtual void keyboardMoved() {}

  /// The buttons from left to right.
  void setButtons(std::vector<DialogButton> buttons);
  /// The number of a button among the controls.
  int buttonControl(std::size_t button) const { return controlCount() + static_cast<int>(button); }
  void giveKeyboardTo(int control);
  /// Anew when what is in the panel has become another.
  void layOut() override;
  const Style& style() const { return style_; }
  const PressTracker& presses() const { return presses_; }
  int padding() const;
  /// Of the row of buttons with the gap above it.
  int buttonRowHeight() const;

 private:
  void layOutButtons();
  PressTracker::Control anyControlAt(int x, int y) const;
  int totalControls() const { return controlCount() + static_cast<int>(buttons_.size()); }
  bool actOn(int control);
  void actOnDefault();

  const Style& style_;
  Rect panel_;
  std::vector<DialogButton> buttons_;
  std::vector<Rect> buttonRects_;
  PressTracker presses_;
  int focusedControl_ = 0;
};

}  // namespace ui
