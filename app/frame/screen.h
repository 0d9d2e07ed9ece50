#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/frame/update_bar.h"
#include "ui/geometry.h"
#include "ui/widgets/style.h"
#include "ui/widgets/view_group.h"

namespace app {

/// What fills the window: the welcome or a scan. The main window shows one of them at a time. Both
/// have a line under the toolbar while the user is told of an update. Window thread only.
class Screen : public ui::ViewGroup {
 public:
  /// The buttons of the line about an update.
  std::function<void()> onDownload;
  std::function<void()> onDismissUpdate;

  /// `style` outlives the screen.
  explicit Screen(const ui::Style& style);

  /// The button that the application menu hangs from.
  virtual ui::Rect menuButton() const = 0;

  /// The message of an update, as the server gave it; nothing while there is none to tell, or once
  /// it was dismissed.
  void setUpdate(const std::optional<std::string>& message);
  const UpdateBar& updateBar() const { return updateBar_; }

 protected:
  /// The view that has the keyboard when no other does.
  virtual ui::View& mainView() = 0;
  void placeUpdateBar(const ui::Rect& place) { updateBar_.setRect(place); }

 private:
  UpdateBar updateBar_;
};

}  // namespace app
