#pragma once

#include <optional>

#include "sizewalk/file_tree.h"

namespace app {

/// The entry of `folder` through which the way to `node` leads, which may be `node` itself; nothing
/// when `node` is not inside `folder`. Any thread.
std::optional<sizewalk::NodeId> childTowards(const sizewalk::FileTree& tree,
                                             sizewalk::NodeId folder, sizewalk::NodeId node);

}  // namespace app
