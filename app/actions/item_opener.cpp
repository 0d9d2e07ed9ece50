#include "app/actions/item_opener.h"

#include <utility>

#include "app/actions/desktop.h"
#include "app/actions/process.h"

namespace app {

ItemOpener::ItemOpener(Post post)
    : presence_(
          [](const std::string& program) {
            return isOnPath(program) ? Presence::There : Presence::Missing;
          },
          [this, post = std::move(post)](const std::string& program, Presence presence) {
            post([this, program, presence] { tell(program, presence); });
          }) {}

void ItemOpener::open(const std::string& path) {
  if (!path.empty()) lookFor(kOpener, openWithDefaultApp(path));
}

void ItemOpener::showInFiles(const std::string& path) {
  if (!path.empty()) lookFor(kBusSender, showInFileManager(path));
}

void ItemOpener::lookFor(const char* program, bool started) {
  if (started) {
    presence_.ask(program);
  } else if (onFailed) {
    onFailed();
  }
}

void ItemOpener::tell(const std::string& program, Presence presence) const {
  if (presence == Presence::Missing && onMissing) onMissing(program);
}

}  // namespace app
