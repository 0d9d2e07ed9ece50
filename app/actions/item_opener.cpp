#include "app/actions/item_opener.h"

#include <sys/stat.h>

#include "app/actions/desktop.h"
#include "app/actions/process.h"

namespace app {

namespace {

/// Of a file or folder; otherwise it is an address.
bool isPath(const std::string& text) { return text.starts_with('/'); }

/// Also for a link to a folder, which opens as the folder does.
bool isFolder(const std::string& path) {
  struct stat status {};
  return isPath(path) && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

ItemOpener::ItemOpener(const Post& post)
    : presence_(
          [](const std::string& program) {
            return isOnPath(program) ? Presence::There : Presence::Missing;
          },
          [this, post](const std::string& program, Presence presence) {
            post([this, program, presence] { tell(program, presence); });
          }),
      openings_(findOpening, [this, post](const std::string& path, Opening opening) {
        post([this, path, opening] { finishOpening(path, opening); });
      }) {}

void ItemOpener::open(const std::string& path) {
  if (path.empty()) return;
  if (const auto opening = openings_.ask(path)) finishOpening(path, *opening);
}

ItemOpener::Opening ItemOpener::findOpening(const std::string& path) {
  const FolderProgram program = isFolder(path) ? programForFolders() : FolderProgram::Another;
  if (program != FolderProgram::Another && openInFileManager(path)) return Opening::Nothing;
  if (program != FolderProgram::Own) {
    return isOnPath(kOpener) ? Opening::StartOpener : Opening::TellNoOpener;
  }
  return isOnPath(kBusSender) ? Opening::TellNoFileManager : Opening::TellNoBusSender;
}

void ItemOpener::finishOpening(const std::string& path, Opening opening) const {
  switch (opening) {
    case Opening::Unknown:
      return isPath(path) ? fail() : startOpener(path);
    case Opening::StartOpener:
      return startOpener(path);
    case Opening::TellNoOpener:
      return tell(kOpener, Presence::Missing);
    case Opening::TellNoBusSender:
      return tell(kBusSender, Presence::Missing);
    case Opening::TellNoFileManager:
      if (onNoFileManager) onNoFileManager();
      return;
    case Opening::Nothing:
      return;
  }
}

void ItemOpener::startOpener(const std::string& path) const {
  if (!openWithDefaultApp(path)) fail();
}

void ItemOpener::showInFiles(const std::string& path) {
  if (path.empty()) return;
  if (showInFileManager(path)) {
    presence_.ask(kBusSender);
  } else {
    fail();
  }
}

void ItemOpener::fail() const {
  if (onFailed) onFailed();
}

void ItemOpener::tell(const std::string& program, Presence presence) const {
  if (presence == Presence::Missing && onMissing) onMissing(program);
}

}  // namespace app
