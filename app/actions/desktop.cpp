#include "app/actions/desktop.h"

#include <cstddef>
#include <string_view>

#include "app/actions/process.h"
#include "app/model/product.h"

namespace app {

namespace {

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

/// The method ShowItems of the interface that file managers share, with one URI and no startup id
/// (https://www.freedesktop.org/wiki/Specifications/file-manager-interface/).
std::vector<std::string> showItemsCommand(const std::string& path) {
  return {kBusSender,
          "--session",
          "--print-reply",
          "--dest=org.freedesktop.FileManager1",
          "--type=method_call",
          "/org/freedesktop/FileManager1",
          "org.freedesktop.FileManager1.ShowItems",
          "array:string:file://" + path,
          "string:"};
}

/// The URI of a file (RFC 8089). A list of strings on the command line of `kBusSender` ends at a
/// comma, which is encoded like all but letters, digits and what stands for itself.
std::string fileUri(const std::string& path) {
  constexpr std::string_view kAsItIs =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string uri = "file://";
  for (const char byte : path) {
    const auto value = static_cast<unsigned char>(byte);
    if (kAsItIs.find(byte) != std::string_view::npos) {
      uri += byte;
    } else {
      uri.append({'%', kDigits[value >> 4], kDigits[value & 15]});
    }
  }
  return uri;
}

/// `command`, told to end after so many seconds and killed one second later, with all it started.
/// Where there is no such tool nothing is run.
std::vector<std::string> within(const char* seconds, std::vector<std::string> command) {
  command.insert(command.begin(), {"timeout", "-k", "1", seconds});
  return command;
}

}  // namespace

bool openWithDefaultApp(const std::string& path) {
  return !path.empty() && spawnDetached({kOpener, path});
}

bool showInFileManager(const std::string& path) { return showInFileManager(path, spawnDetached); }

bool showInFileManager(const std::string& path, const Starter& start) {
  if (path.empty()) return false;
  return start(showItemsCommand(path)) || start({kOpener, folderOf(path)});
}

bool foldersOpenWithThisProgram() {
  const std::string entry =
      runCapture(within("3", {kAssociations, "query", "default", "inode/directory"}));
  return std::string_view(entry).substr(0, entry.find('\n')).ends_with(kDesktopEntry);
}

bool openInFileManager(const std::string& path) {
  const std::string reply = runCapture(within(
      "15",
      {kBusSender, "--session", "--print-reply", "--dest=org.freedesktop.FileManager1",
       "--type=method_call", "/org/freedesktop/FileManager1",
       "org.freedesktop.FileManager1.ShowFolders", "array:string:" + fileUri(path), "string:"}));
  return !reply.empty();
}

}  // namespace app
