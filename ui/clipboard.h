#pragma once

#include <string>

#include "ui/x11.h"

namespace ui {

/// The text that a window offers to other clients as the CLIPBOARD selection. PRIMARY is not used,
/// and nothing is handed to a clipboard manager: the text lapses with the connection.
class Clipboard {
 public:
  explicit Clipboard(Display* display);

  /// Offers `text` from `window`; without a window (0) it is only kept.
  void offer(const std::string& text, ::Window window);
  /// Another client took a selection that was ours; perhaps before `offer` took it back.
  void handleClear(const XSelectionClearEvent& event);
  /// Another client asks for a selection. Text goes out as the bytes it is, also as STRING.
  /// Selections other than CLIPBOARD, unknown targets, and text beyond what one request can carry
  /// are refused.
  void answer(const XSelectionRequestEvent& request) const;

  const std::string& text() const { return text_; }

 private:
  /// Stores the answer on the requestor's property; false when there is none to give.
  bool deliver(const XSelectionRequestEvent& request, Atom property) const;

  Display* display_;
  Atom clipboard_;
  Atom utf8String_;
  Atom targets_;
  std::string text_;
  /// The number of the request that last claimed the selection.
  unsigned long claim_ = 0;
};

}  // namespace ui
