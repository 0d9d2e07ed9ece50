#pragma once

#include <memory>
#include <string>

#include "app/dialogs/sub_folder_reader.h"

namespace test {

/// Reads real folders, but those whose path ends with "slow" only once they are released, as a
/// server on the network might. Any thread.
class SlowFolders {
 public:
  SlowFolders();
  /// Releases.
  ~SlowFolders();
  SlowFolders(const SlowFolders&) = delete;
  SlowFolders& operator=(const SlowFolders&) = delete;

  /// For a reader, which may be used after this is gone.
  app::SubFolderReader::Read read() const;
  void release();
  /// How many times a slow folder was asked, and how many times it has answered.
  int questions() const;
  int answers() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace test
