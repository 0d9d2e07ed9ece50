#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/dialogs/folder_places.h"
#include "app/dialogs/sub_folders.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/list_cursor.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/style.h"

namespace app {

/// The places of the folder chooser, with one that Enter goes to while they have the keyboard.
/// Window thread only.
class PlacesColumn : public ui::RowList {
 public:
  /// `style` outlives the column. There is at least one place.
  PlacesColumn(const ui::Style& style, std::vector<FolderPlace> places);

  /// Up, Down, Home, End and the page keys.
  bool key(const ui::KeyEvent& event) override;

  const std::vector<FolderPlace>& places() const { return places_; }
  const FolderPlace& current() const { return places_[current_]; }
  void setCurrent(std::size_t row);
  /// The places that lead to `path` stand out.
  void setShownPath(const std::string& path);

 protected:
  void paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const override;
  bool isCurrent(std::size_t row) const override { return row == current_; }
  void paintGround(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const override;
  /// It is drawn with the ground, whose shape it has.
  void paintRing(ui::Canvas& /*canvas*/) const override {}

 private:
  std::vector<FolderPlace> places_;
  std::size_t current_ = 0;
  std::string shownPath_;
};

/// The folders inside the one that the chooser shows. One of them may be selected. Window thread
/// only.
class SubFoldersColumn : public ui::RowList {
 public:
  /// `style` outlives the column.
  explicit SubFoldersColumn(const ui::Style& style) : ui::RowList(style) {}

  /// Shows nothing: what there is to show is not known yet.
  void clear();
  /// Shows what is in a folder, from the top on and with nothing selected.
  void show(SubFolders subFolders);
  void select(std::size_t row);
  /// The next letter begins another name.
  void forgetTyped() { cursor_.forgetTyped(); }

  /// Selects by the keys that move and by letters, which search for a name.
  bool key(const ui::KeyEvent& event) override;

  /// Nothing once it was cleared.
  const std::optional<SubFolders>& subFolders() const { return subFolders_; }
  std::optional<std::size_t> selected() const { return cursor_.current(); }
  /// Nothing when none is selected.
  std::optional<std::string> selectedName() const;

 protected:
  void paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const override;
  bool isSelected(std::size_t row) const override { return cursor_.current() == row; }
  /// The chooser draws it round the frame.
  void paintRing(ui::Canvas& /*canvas*/) const override {}

 private:
  std::optional<SubFolders> subFolders_;
  /// The selected row. What was read does not change, so a row's number is its key.
  ui::ListCursor<std::size_t> cursor_;
};

/// Room left and right of the texts in boxes and rows.
ui::Rect chooserTextPlace(const ui::Style& style, const ui::Rect& box);

}  // namespace app
