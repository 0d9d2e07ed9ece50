#pragma once

#include <optional>
#include <string>

#include "app/actions/item_identity.h"

namespace app {

/// Something to be trashed.
struct TrashItem {
  std::string path;  // absolute
  /// What has to lie at `path` still. Nothing: whatever does.
  std::optional<ItemIdentity> identity = std::nullopt;
};

/// The `counter`th name for an item in a trash; 0 gives the name itself. Others have the counter
/// before the last dot ("report.1.pdf") or, when no dot stands after the first byte, at the end
/// ("notes.1", ".bashrc.1").
std::string nameInTrash(const std::string& name, int counter);

/// Moves the item by one rename into the trash directory `trashDir`, which is made when it is
/// missing, under the first name that is free there. Nothing in the trash is overwritten, where the
/// file system can see to that. `recordedPath` is what the record says of the place it came from.
///
/// On failure returns false, and the item and the records are as they were; `error`, which may be
/// null, then holds a sentence for the user, or nothing new when the item lies on another file
/// system than the trash. Window thread. Asks the disk, and waits for another process of ours that
/// uses the same trash, a second at most.
bool trashInto(const std::string& trashDir, const TrashItem& item, const std::string& recordedPath,
               std::string* error);

}  // namespace app
