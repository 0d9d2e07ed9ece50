#pragma once

#include <cstdint>

#include "ui/input.h"

namespace ui {

/// What can have the pointer's input: a screen, a dialog or a menu. The main window hands it to the
/// topmost one. Window thread only.
class InputTarget {
 public:
  InputTarget() : serial_(nextSerial()) {}
  virtual ~InputTarget() = default;
  InputTarget(const InputTarget&) = delete;
  InputTarget& operator=(const InputTarget&) = delete;

  /// Tells it from every other one, also from those that are gone. Never 0.
  std::uint64_t serial() const { return serial_; }

  virtual void press(const MouseEvent& event) = 0;
  virtual void motion(const MouseEvent& event) = 0;
  virtual void release(const MouseEvent& event) = 0;
  /// The pointer left the window.
  virtual void leave() = 0;
  /// `dy` steps of the wheel, down when above 0.
  virtual void wheel(const MouseEvent& event, int dy) = 0;

 private:
  static std::uint64_t nextSerial() {
    static std::uint64_t last = 0;
    return ++last;
  }

  const std::uint64_t serial_;
};

}  // namespace ui
