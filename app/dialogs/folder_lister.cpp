#include "app/dialogs/folder_lister.h"

#include <chrono>
#include <utility>

#include "base/owed_answers.h"

namespace app {

namespace {
/// How long an answer counts as coming at once: too short to be felt, long enough for any folder of
/// a usual size.
constexpr std::chrono::milliseconds kAtOnce{25};
}  // namespace

FolderLister::FolderLister(Post post, List list)
    : answers_(std::move(list),
               [this, post = std::move(post)](const std::string& path, FolderListing listing) {
                 post([this, path, listing = std::move(listing)]() mutable {
                   if (onListed) onListed(path, std::move(listing));
                 });
               }) {}

std::optional<FolderListing> FolderLister::list(const std::string& path) {
  return answers_.ask(path, kAtOnce);
}

}  // namespace app
