#include "app/dialogs/sub_folder_reader.h"

#include <chrono>
#include <utility>

#include "base/owed_answers.h"

namespace app {

namespace {
/// How long an answer counts as coming at once: too short to be felt, long enough for any folder of
/// a usual size.
constexpr std::chrono::milliseconds kAtOnce{25};
}  // namespace

SubFolderReader::SubFolderReader(Post post, Read read)
    : answers_(std::move(read),
               [this, post = std::move(post)](const std::string& path, SubFolders subFolders) {
                 post([this, path, subFolders = std::move(subFolders)]() mutable {
                   if (onRead) onRead(path, std::move(subFolders));
                 });
               }) {}

std::optional<SubFolders> SubFolderReader::read(const std::string& path) {
  return answers_.ask(path, kAtOnce);
}

}  // namespace app
