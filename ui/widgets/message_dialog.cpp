#include "ui/widgets/message_dialog.h"

#include <algorithm>
#include <utility>

#include "ui/text.h"

namespace ui {

namespace {

// Logical pixels.
constexpr double kTextWidth = 400;
constexpr double kTitleGap = 8;
constexpr double kFrame = 2 * (16 + 12);  // padding and margin of the panel, both sides

}  // namespace

MessageDialog::MessageDialog(Connection& connection, const Style& style, std::string title,
                             std::string text, std::vector<DialogButton> buttons,
                             std::size_t cancelButton)
    : Dialog(style), connection_(connection), title_(std::move(title)), text_(std::move(text)) {
  std::size_t first = buttons.size() - 1;
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    if (buttons[i].kind == ButtonKind::Default) first = i;
    buttons[i].action = [this, action = std::move(buttons[i].action)] {
      // A copy: closing destroys this dialog and the callable that is running.
      const auto then = action;
      close();
      if (then) then();
    };
  }
  cancelAction_ = buttons[cancelButton].action;
  setButtons(std::move(buttons));
  giveKeyboardTo(buttonControl(first));
}

int MessageDialog::textWidthIn(int windowWidth) const {
  return std::max(1, std::min(style().scaled(kTextWidth), windowWidth - style().scaled(kFrame)));
}

Rect MessageDialog::wantedPanel(int width, int /*height*/) const {
  const int textWidth = textWidthIn(width);
  const Paragraph paragraph(connection_, text_, style().body(), textWidth);
  const int height = style().heading().height + style().scaled(kTitleGap) + paragraph.height();
  return {0, 0, textWidth + 2 * padding(), height + buttonRowHeight() + 2 * padding()};
}

void MessageDialog::layOutContent(const Rect& content) {
  content_ = content;
  paragraph_ = Paragraph(connection_, text_, style().body(), content.w);
}

void MessageDialog::paintContent(Canvas& canvas) const {
  const Palette& palette = style().palette();
  const int titleHeight = style().heading().height;
  drawText(canvas, {content_.x, content_.y, content_.w, titleHeight}, title_, style().heading(),
           palette.text);
  canvas.pushClip(content_);
  paragraph_.draw(canvas, content_.x, content_.y + titleHeight + style().scaled(kTitleGap),
                  palette.text);
  canvas.popClip();
}

void MessageDialog::cancel() {
  if (const auto action = cancelAction_) action();
}

std::vector<DialogButton> okButton() { return {{"OK", ButtonKind::Default, {}}}; }

}  // namespace ui
