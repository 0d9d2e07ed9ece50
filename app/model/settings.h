#pragma once

#include <string_view>

namespace app {

/// A yes/no setting of the user's: its key in the settings file, and what holds while nothing is
/// stored for it.
struct Setting {
  std::string_view key;
  bool fallback;
};

/// Every setting there is.
namespace setting {

/// The panes lie one above the other instead of side by side.
inline constexpr Setting kSplitHorizontally{"SplitHorizontally", false};
/// The table of file kinds is shown.
inline constexpr Setting kShowFileKinds{"ShowFileKinds", true};
/// The map has a block for the volume's free space.
inline constexpr Setting kShowFreeSpace{"ShowFreeSpace", false};
/// The map has a block for what else the volume holds beside the scanned folder.
inline constexpr Setting kShowOtherSpace{"ShowOtherSpace", false};
/// Files count with the space they take on disk, not with their length.
inline constexpr Setting kShowPhysicalFileSize{"ShowPhysicalFileSize", true};
/// A file kind has the same colour in every scan.
inline constexpr Setting kConsistentKindColours{"ConsistentKindColours", true};
/// The program looks for a newer version when it starts.
inline constexpr Setting kCheckForUpdates{"CheckForUpdates", true};

}  // namespace setting

}  // namespace app
