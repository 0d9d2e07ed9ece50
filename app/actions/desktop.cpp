#include "app/actions/desktop.h"

#include <cstddef>

#include "app/actions/process.h"

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

}  // namespace

bool openWithDefaultApp(const std::string& path) {
  return !path.empty() && spawnDetached({kOpener, path});
}

bool showInFileManager(const std::string& path) { return showInFileManager(path, spawnDetached); }

bool showInFileManager(const std::string& path, const Starter& start) {
  if (path.empty()) return false;
  return start(showItemsCommand(path)) || start({kOpener, folderOf(path)});
}

}  // namespace app
