#pragma once

#include <functional>
#include <string>

#include "base/owed_answers.h"

namespace app {

/// Has the desktop open and show items, and tells when the program that does so is not there: its
/// start tells nothing of that. Window thread; waits for nothing.
class ItemOpener {
 public:
  /// Has the window thread run a task, as long as the opener is there. Called on other threads.
  using Post = std::function<void(std::function<void()>)>;

  /// The program of that name is not on PATH, so nothing came of what was asked for.
  std::function<void(const std::string& program)> onMissing;
  /// No process could be started at all.
  std::function<void()> onFailed;

  explicit ItemOpener(Post post);

  /// See `openWithDefaultApp` and `showInFileManager`. The path of a file or folder; nothing
  /// happens for an empty one.
  void open(const std::string& path);
  void showInFiles(const std::string& path);

 private:
  enum class Presence { Unknown, There, Missing };

  void lookFor(const char* program, bool started);
  void tell(const std::string& program, Presence presence) const;

  /// PATH may lead to a disk that does not answer.
  base::OwedAnswers<std::string, Presence> presence_;
};

}  // namespace app
