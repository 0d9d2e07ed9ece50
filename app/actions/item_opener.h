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
  /// No process could be started at all, or no thread to find out with whether a folder is opened.
  std::function<void()> onFailed;
  /// The desktop opens folders with this program, and no file manager answered: nothing came of it.
  std::function<void()> onNoFileManager;

  explicit ItemOpener(const Post& post);

  /// See `openWithDefaultApp`. The path of a file or folder, or an address; nothing happens for an
  /// empty one. How to open it is found out first, beside the window: a folder never comes back to
  /// this program, but goes to the session's file manager instead; where nobody knows what the
  /// desktop would do with it, the file manager has the first try. Asked for again meanwhile, it is
  /// opened once.
  void open(const std::string& path);
  /// See `showInFileManager`. Nothing happens for an empty path.
  void showInFiles(const std::string& path);

 private:
  enum class Presence { Unknown, There, Missing };
  /// What is left to do to open something. `Unknown` where that could not be found out: a path may
  /// then be a folder's, which only the disk can tell, and is not opened.
  enum class Opening {
    Unknown,
    StartOpener,
    TellNoOpener,
    TellNoBusSender,
    TellNoFileManager,
    Nothing
  };

  static Opening findOpening(const std::string& path);
  void finishOpening(const std::string& path, Opening opening) const;
  void startOpener(const std::string& path) const;
  void fail() const;
  void tell(const std::string& program, Presence presence) const;

  /// PATH may lead to a disk that does not answer, and so may what is opened.
  base::OwedAnswers<std::string, Presence> presence_;
  base::OwedAnswers<std::string, Opening> openings_;
};

}  // namespace app
