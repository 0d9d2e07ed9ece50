#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/dialogs/chooser_columns.h"
#include "app/dialogs/folder_places.h"
#include "app/dialogs/sub_folder_reader.h"
#include "ui/widgets/dialog.h"

namespace app {

/// Where the user picks the folder to scan: places to begin at, the folder that is shown, and the
/// folders inside it. Window thread only.
///
/// Arrows move through the list or the places, whichever has the keyboard, left and right between
/// the two; letters search the list. Enter goes into the selected folder or to the place, Backspace
/// goes up, and Ctrl+Enter scans.
class FolderChooser : public ui::Dialog {
 public:
  /// The controls that come before the buttons.
  enum Control : int { kUp, kPlaces, kList };
  /// The buttons.
  enum : std::size_t { kCancel, kScan };

  /// The path to scan. The chooser has closed by then.
  std::function<void(const std::string&)> onChosen;

  /// Shows the first of `places`, of which there is at least one. `style` and `reader` outlive the
  /// chooser, which is the only one to use the reader while it is there.
  FolderChooser(const ui::Style& style, std::vector<FolderPlace> places, SubFolderReader& reader);
  ~FolderChooser() override;

  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void release(const ui::MouseEvent& event) override;
  void leave() override;
  void wheel(const ui::MouseEvent& event, int dy) override;
  bool key(const ui::KeyEvent& event) override;
  void tick(std::int64_t nowMs) override;
  void releasePointer() override;

  const std::string& path() const { return path_; }
  const std::vector<FolderPlace>& places() const { return placesColumn_.places(); }
  /// Nothing while the folder has not been read yet.
  const std::optional<SubFolders>& subFolders() const { return listColumn_.subFolders(); }
  std::optional<std::size_t> selected() const { return listColumn_.selected(); }
  /// What is said where the list would be; empty while there is a list.
  std::string message() const;

  const ui::RowList& listColumn() const { return listColumn_; }
  const ui::RowList& placesColumn() const { return placesColumn_; }
  const ui::Rect& pathBox() const { return pathBox_; }
  const ui::Rect& upButton() const { return upButton_; }

 protected:
  ui::Rect wantedPanel(int width, int height) const override;
  void layOutContent(const ui::Rect& content) override;
  void paintContent(ui::Canvas& canvas) const override;
  int controlCount() const override { return kList + 1; }
  ui::PressTracker::Control controlAt(int x, int y) const override;
  bool act(int control) override;
  void keyboardMoved() override;

 private:
  void goTo(std::string path);
  void goUp();
  void goInto(const std::string& name);
  void scan();

  bool pressColumns(const ui::MouseEvent& event);
  bool keyAnywhere(const ui::KeyEvent& event);
  bool keyInPlaces(const ui::KeyEvent& event);
  bool keyInList(const ui::KeyEvent& event);

  void paintPath(ui::Canvas& canvas) const;
  void paintList(ui::Canvas& canvas) const;

  SubFolderReader& reader_;
  std::string path_;
  std::int64_t askedMs_ = 0;  // when the folder was asked for what is in it
  bool slow_ = false;         // it has not answered for long enough to say so

  ui::Rect heading_;
  ui::Rect pathBox_;
  ui::Rect upButton_;
  ui::Rect listFrame_;
  PlacesColumn placesColumn_;
  SubFoldersColumn listColumn_;
};

}  // namespace app
