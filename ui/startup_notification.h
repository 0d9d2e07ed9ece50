#pragma once

#include <utility>

#include "ui/connection.h"
#include "ui/startup_id.h"

namespace ui {

/// Answers the launcher that started the program and shows since that the user has to wait, as by a
/// busy pointer: until it is told that the start is over, or gives up after many seconds. Window
/// thread only.
class StartupNotification {
 public:
  explicit StartupNotification(StartupId id) : id_(std::move(id)) {}
  /// Ends the start, unless that was done: no window comes, or comes no more. By a connection of
  /// its own; where there is none, nobody waits.
  ~StartupNotification();
  StartupNotification(const StartupNotification&) = delete;
  StartupNotification& operator=(const StartupNotification&) = delete;

  const StartupId& id() const { return id_; }
  /// Says that `window` (`Window::xid`) is the one that the start leads to, and when the user asked
  /// for it. Before it is shown: by that the window manager puts it on the desktop of the launcher,
  /// and in front unless the user has turned to something else since.
  void announce(const Connection& connection, unsigned long window) const;
  /// Tells everybody that the start is over, the first time that it is called.
  void end(const Connection& connection, unsigned long window);

 private:
  bool over() { return std::exchange(over_, true); }

  const StartupId id_;
  bool over_ = id_.none();
};

}  // namespace ui
