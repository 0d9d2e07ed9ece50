#pragma once

#include <optional>
#include <random>
#include <vector>

#include "bench/support/screen_damage.h"
#include "tests/support/other_client.h"

namespace bench {

/// The pointer of a user who goes from item to item of a map at rest, whose outline follows.
class MapPointer {
 public:
  /// `client` outlives the object. The map takes the middle of a window of this size.
  MapPointer(test::OtherClient& client, int width, int height);

  /// Milliseconds from each of so many motions to the end of the frame that it brought. Left out
  /// are motions without a frame, within one item, and those during which the host of a virtual
  /// machine kept its processors from it.
  std::vector<double> move(int motions);
  /// To the middle of the map, as one motion more.
  void comeBack();
  int disturbed() const { return disturbed_; }

 private:
  std::optional<double> moveTo(int x, int y);
  int upTo(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most)); }

  test::OtherClient& client_;
  const int width_;
  const int height_;
  ScreenDamage damage_;
  std::mt19937 random_{1};
  int disturbed_ = 0;
};

}  // namespace bench
