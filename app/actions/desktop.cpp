#include "app/actions/desktop.h"

#include <cstddef>
#include <string_view>

#include "app/actions/process.h"
#include "app/model/product.h"

namespace app {

namespace {

constexpr const char* kTimeLimiter = "timeout";

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

/// A method of the interface that file managers share, with one URI and no startup id
/// (https://www.freedesktop.org/wiki/Specifications/file-manager-interface/).
std::vector<std::string> fileManagerCommand(const std::string& method, const std::string& uri) {
  return {kBusSender,
          "--session",
          "--print-reply",
          "--dest=org.freedesktop.FileManager1",
          "--type=method_call",
          "/org/freedesktop/FileManager1",
          "org.freedesktop.FileManager1." + method,
          "array:string:" + uri,
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
  command.insert(command.begin(), {kTimeLimiter, "-k", "1", seconds});
  return command;
}

/// What one of those who know answers: its first line ends with a desktop entry, or with a word
/// that there is none.
FolderProgram folderProgramOf(const std::vector<std::string>& question) {
  const std::string answer = runCapture(within("3", question));
  const std::string_view line = std::string_view(answer).substr(0, answer.find('\n'));
  if (line.empty()) return FolderProgram::Unknown;
  return line.ends_with(kDesktopEntry) ? FolderProgram::Own : FolderProgram::Another;
}

}  // namespace

bool openWithDefaultApp(const std::string& path) {
  return !path.empty() && spawnDetached({kOpener, path});
}

bool showInFileManager(const std::string& path) { return showInFileManager(path, spawnDetached); }

bool showInFileManager(const std::string& path, const Starter& start) {
  if (path.empty()) return false;
  return start(fileManagerCommand("ShowItems", "file://" + path)) ||
         start({kOpener, folderOf(path)});
}

FolderProgram programForFolders() {
  const FolderProgram first =
      folderProgramOf({kAssociations, "query", "default", "inode/directory"});
  if (first == FolderProgram::Own || !isOnPath(kGlibAssociations)) return first;
  const FolderProgram second = folderProgramOf({kGlibAssociations, "mime", "inode/directory"});
  return second == FolderProgram::Another ? first : second;
}

bool openInFileManager(const std::string& path) {
  const std::vector<std::string> command = fileManagerCommand("ShowFolders", fileUri(path));
  // On its own it waits for a reply for 25 seconds.
  return !runCapture(isOnPath(kTimeLimiter) ? within("15", command) : command).empty();
}

}  // namespace app
