#pragma once

#include <functional>
#include <string>
#include <vector>

namespace app {

/// The program that opens what the desktop has for a file or folder.
inline constexpr const char* kOpener = "xdg-open";
/// The program that asks the file manager to show an item.
inline constexpr const char* kBusSender = "dbus-send";

/// The programs that know what `kOpener` opens things with. They may differ in their answers, and
/// which of them it goes by depends on the desktop.
inline constexpr const char* kAssociations = "xdg-mime";
inline constexpr const char* kGlibAssociations = "gio";

/// Starts a program and lets go of it, as `spawnDetached` does.
using Starter = std::function<bool(const std::vector<std::string>& argv)>;

/// Opens the file or folder at `path` with what the desktop has for it. False when `path` is empty
/// or nothing could be started; true does not say that `kOpener` is there (see `isOnPath`). Waits
/// for nothing; window thread.
bool openWithDefaultApp(const std::string& path);

/// Asks the desktop's file manager, on the session bus, to show the folder of `path` with it
/// selected. The path is handed on as held: nothing in it is encoded. When that cannot be started
/// the folder is opened instead. False when `path` is empty or neither could be started; a session
/// without a file manager is not noticed. Waits for nothing; window thread.
bool showInFileManager(const std::string& path);
bool showInFileManager(const std::string& path, const Starter& start);

/// What the desktop opens folders with.
enum class FolderProgram { Unknown, Own, Another };

/// Whether `openWithDefaultApp` of a folder would start this very program: the desktop lists it for
/// folders, and where no file manager is installed, or comes later in the alphabet, it may be the
/// one that is taken. Asks `kAssociations` and, where it is there, `kGlibAssociations`: `Own` when
/// either says so, `Unknown` when neither does and one of them has no answer within its three
/// seconds. Waits eight seconds at most. Not for the window thread.
FolderProgram programForFolders();

/// Has the file manager on the session bus open the folder at `path`, absolute, whatever the
/// desktop opens folders with. Returns whether one did, and waits for that, sixteen seconds at
/// most, or as long as `kBusSender` does where no tool limits its time. Not for the window thread.
bool openInFileManager(const std::string& path);

}  // namespace app
