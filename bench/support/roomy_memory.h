#pragma once

#include <functional>

namespace bench {

/// Does `work`, whose million files find room for millions of names: in tmpfs there are no more of
/// them, unless it is told otherwise, than half the pages of the machine's memory. It runs in a
/// process with a tmpfs of its own, where this machine allows that.
void inRoomyMemory(const std::function<void()>& work);

}  // namespace bench
