#pragma once

#include <string>

namespace base {

/// Makes every missing directory along `path`, intermediate ones too, each for the owner alone
/// (mode 0700) whatever the umask says. What exists is left as it is, and need not be a directory.
/// False at the first that cannot be made, errno saying why; those made so far stay. An empty path
/// succeeds. Asks the disk. Any thread.
bool makeDirectories(const std::string& path);

}  // namespace base
