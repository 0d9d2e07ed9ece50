#pragma once

#include <string>
#include <vector>

#include "ui/connection.h"
#include "ui/paragraph.h"
#include "ui/widgets/dialog.h"

namespace ui {

/// Tells the user something, or asks a question: a title, a text and buttons, each of which closes
/// the dialog before it acts.
class MessageDialog : public Dialog {
 public:
  /// The button of kind `Default` has the keyboard at first; the last one does when there is none.
  /// Escape presses the button number `cancelButton`.
  MessageDialog(Connection& connection, const Style& style, std::string title, std::string text,
                std::vector<DialogButton> buttons, std::size_t cancelButton = 0);

  const std::string& title() const { return title_; }
  const std::string& text() const { return text_; }

 protected:
  Rect wantedPanel(int width, int height) const override;
  void layOutContent(const Rect& content) override;
  void paintContent(Canvas& canvas) const override;
  void cancel() override;

 private:
  int textWidthIn(int windowWidth) const;

  Connection& connection_;
  std::string title_;
  std::string text_;
  std::function<void()> cancelAction_;
  Rect content_;
  Paragraph paragraph_;
};

/// A message with one button, "OK".
std::vector<DialogButton> okButton();

}  // namespace ui
