#pragma once

namespace test {

/// A place in the toolbar of a window of the first size or any other: right behind "Stop", where
/// "Rescan" reaches, being wider. The frame in which it changes is the first that shows the whole
/// scan, in the list and the tables too; until then a key may meet rows that are not there yet.
struct ScanEnd {
  int x;
  int y;
  /// What is seen there while a scan runs, 0xRRGGBB.
  unsigned long ground;

  /// Of windows on the X server that DISPLAY names.
  static ScanEnd find();
  bool seenIn(unsigned long pixel) const { return pixel != 0 && pixel != ground; }
};

}  // namespace test
