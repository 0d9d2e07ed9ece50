#include "app/actions/item_opener.h"

#include <sys/stat.h>

#include "app/actions/desktop.h"
#include "app/actions/process.h"

namespace app {

namespace {

/// Also for a link to a folder, which opens as the folder does.
bool isFolder(const std::string& path) {
  struct stat status {};
  return path.starts_with('/') && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
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
  if (isFolder(path) && foldersOpenWithThisProgram()) {
    return openInFileManager(path) ? Opening::Nothing : Opening::TellNoFileManager;
  }
  return isOnPath(kOpener) ? Opening::StartOpener : Opening::TellMissing;
}

void ItemOpener::finishOpening(const std::string& path, Opening opening) const {
  switch (opening) {
    case Opening::StartOpener:
      if (!openWithDefaultApp(path) && onFailed) onFailed();
      return;
    case Opening::TellMissing:
      return tell(kOpener, Presence::Missing);
    case Opening::TellNoFileManager:
      if (onNoFileManager) onNoFileManager();
      return;
    case Opening::Nothing:
      return;
  }
}

void ItemOpener::showInFiles(const std::string& path) {
  if (path.empty()) return;
  if (showInFileManager(path)) {
    presence_.ask(kBusSender);
  } else if (onFailed) {
    onFailed();
  }
}

void ItemOpener::tell(const std::string& program, Presence presence) const {
  if (presence == Presence::Missing && onMissing) onMissing(program);
}

}  // namespace app
