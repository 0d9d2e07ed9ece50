#include "app/dialogs/sub_folder_reader.h"

#include <utility>

#include "base/owed_answers.h"

namespace app {

SubFolderReader::SubFolderReader(Post post, Read read, std::chrono::milliseconds atOnce)
    : atOnce_(atOnce),
      answers_(std::move(read),
               [this, post = std::move(post)](const std::string& path, SubFolders subFolders) {
                 post([this, path, subFolders = std::move(subFolders)]() mutable {
                   if (onRead) onRead(path, std::move(subFolders));
                 });
               }) {}

std::optional<SubFolders> SubFolderReader::read(const std::string& path) {
  return answers_.ask(path, atOnce_);
}

}  // namespace app
