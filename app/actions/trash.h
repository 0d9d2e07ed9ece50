#pragma once

#include <string>

#include "app/actions/item_identity.h"

namespace app {

/// Moves the file or folder at the absolute `path` into the user's trash in the home directory or,
/// when it lies on another file system, into the user's trash at the top of that one; by one
/// rename. Never copies: an item that cannot be renamed stays where it is, and so it does on the
/// root file system when the home directory lies on another one. Paths may be longer than PATH_MAX.
///
/// On failure returns false, and the item is where it was. `error`, which may be null, is cleared
/// first and then holds a sentence for the user. Window thread; what it asks of the disk, and how
/// long it may wait for another process, is said at `trashInto`.
bool moveToTrash(const std::string& path, std::string* error);

/// The same for what was at `path` when it was identified: fails when something else has come to
/// lie there since.
bool moveToTrash(const std::string& path, const ItemIdentity& identity, std::string* error);

}  // namespace app
