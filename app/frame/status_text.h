#pragma once

#include <cstdint>
#include <string>

#include "app/model/scan_status.h"
#include "sizewalk/file_tree.h"

namespace app {

/// The status line while a scan is shown, such as "1.20 GB in 12,345 items  ·  0.31s".
std::string statusText(const ScanStatus& status);

/// What is said of one item: its path, as the file system has it, and whether it could be read.
std::string itemText(const sizewalk::FileTree& tree, sizewalk::NodeId node);

/// What is said of several selected items, such as "3 selected · 1.20 GB".
std::string selectionText(std::int64_t items, std::int64_t bytes);

}  // namespace app
