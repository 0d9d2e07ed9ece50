#pragma once

namespace ui {

/// A pipe by which any thread ends the window thread's wait. Both ends are non-blocking, so that
/// neither a flood of wake-ups nor an empty pipe ever blocks, and closed in child programs.
class WakePipe {
 public:
  /// Without a descriptor to spare the pipe is not made: `wake` then does nothing.
  WakePipe();
  ~WakePipe();
  WakePipe(const WakePipe&) = delete;
  WakePipe& operator=(const WakePipe&) = delete;

  /// Makes `readEnd` readable. Any thread. A full pipe is left as it is: it wakes already.
  void wake() const;
  /// Takes out what `wake` put in.
  void drain() const;
  /// The descriptor to wait on, -1 when there is no pipe.
  int readEnd() const { return readEnd_; }

 private:
  int readEnd_ = -1;
  int writeEnd_ = -1;
};

}  // namespace ui
