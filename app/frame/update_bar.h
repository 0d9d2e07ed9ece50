#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "ui/widgets/button_view.h"
#include "ui/widgets/style.h"

namespace app {

/// One line that tells of an update: its message, a button that leads to it and one that puts the
/// line away. It comes without being asked for, so its buttons take no press that was meant for
/// what lay there before. Window thread only.
class UpdateBar : public ui::ButtonView<> {
 public:
  std::function<void()> onDownload;
  /// The line stays until it has no message.
  std::function<void()> onDismiss;

  /// `style` outlives the line.
  explicit UpdateBar(const ui::Style& style) : style_(style) {}

  /// Any bytes of any length.
  void setMessage(const std::optional<std::string>& message);
  /// As it is shown, if there is room for it.
  const std::optional<std::string>& message() const { return message_; }
  /// 0 without a message.
  int wantedHeight() const;

  bool takesKeyboard() const override { return message_.has_value(); }
  void paint(ui::Canvas& canvas) const override;
  /// Left and Right go from one button to the other, Enter and Space press.
  bool key(const ui::KeyEvent& event) override;

  // Beside each other; in a line that is too narrow the message goes first, then the download.
  const ui::Rect& messageRect() const { return messageRect_; }
  const ui::Rect& downloadRect() const { return downloadRect_; }
  const ui::Rect& dismissRect() const { return dismissRect_; }

 protected:
  void layOut() override;
  Places buttonPlaces() const override;
  void act(Control control) override;
  void pressTaken(Control control) override { current_ = control; }

 private:
  void paintControl(ui::Canvas& canvas, Control control, const ui::Rect& rect,
                    const char* text) const;

  const ui::Style& style_;
  std::optional<std::string> message_;
  ui::Rect messageRect_;
  ui::Rect downloadRect_;
  ui::Rect dismissRect_;
  /// What has the ring while the line has the keyboard.
  std::int64_t current_ = 0;
};

}  // namespace app
