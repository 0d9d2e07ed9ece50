#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "app/lists/folder_row_painting.h"
#include "app/lists/folder_rows.h"
#include "app/lists/pointer_hold.h"
#include "app/model/commands.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "app/model/remembered_place.h"
#include "app/model/selection.h"
#include "sizewalk/file_tree.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/input.h"
#include "ui/widgets/list_cursor.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/style.h"

namespace app {

/// The outline of the scanned folder: one row for each item that open folders lead to, with a
/// triangle that opens and closes folders, the colour of its kind, its name and its size.
///
/// Beside the selection, which it shares with the map, it has a current row, which the keys move
/// and which shows while the list has the keyboard. Rows, selection and current row are all held by
/// node: new results change nothing in them, and what the user looks at keeps its place on the
/// screen. Where the current row vanishes the nearest one that remains takes over.
///
/// Window thread only. Places and lengths are device pixels of the window.
class FolderList : public ui::RowList {
 public:
  /// A row was pressed twice, or Enter was pressed on it.
  std::function<void(sizewalk::NodeId)> onActivate;
  /// The context menu was asked for at a place; the row's item is among the selected ones.
  std::function<void(sizewalk::NodeId, int x, int y, Command::By by)> onContextMenu;
  /// The user has closed a folder.
  std::function<void(sizewalk::NodeId)> onClosed;

  /// All outlive the list. Without `colours` rows have no swatches.
  FolderList(const ui::Style& style, const KindColours* colours, Selection& selection);

  /// Shows `tree`, which outlives being shown, from the top with the scanned folder open; nothing
  /// when it is null. Clearing the selection, which held nodes of another tree, is up to the owner.
  void show(const sizewalk::FileTree* tree);
  void setMeasure(const MeasureSettings& measure);
  /// Looks at the tree anew, after it has grown or something was taken out or put back. Of the rows
  /// that remain, the one under the pointer stays where it is on the screen, once the pointer has
  /// moved in the list; else the list goes back to its top, or to where it returns to, until the
  /// user has acted in it; from then on the current row, a selected one or the topmost stays, the
  /// first of them in view. Where the list cannot scroll so far the order of the rows waits until
  /// the pointer is on another row, the wheel turns or a key is used; while the tree grows so do
  /// new rows.
  void refresh();
  /// The folder that the map shows: its row carries a mark.
  void setMapFocus(sizewalk::NodeId folder);
  /// Whether a walk adds to the tree. At first none does.
  void setGrowing(bool growing) { growing_ = growing; }

  ListPlace place() const;
  /// A tree that fills is to be shown as another one was: everything is closed, for `returnTo` to
  /// open. Each part ends when the user does something about it; opening and closing a row says
  /// nothing about others that were open.
  void beginReturn();
  /// Takes up what is known by now of the place to return to, with the next `refresh`.
  void returnTo(const ListPlace& place);
  void endReturn() { returning_ = {}; }
  /// Which parts it still returns to.
  struct Returning {
    bool openRows = false;
    bool currentRow = false;
    bool scroll = false;
  };
  const Returning& returning() const { return returning_; }

  /// Something covers the list: the row that was under the pointer stays in its place meanwhile.
  void cover() { hold_.cover(); }
  /// The pointer is there, in the list or elsewhere. Without this the list does not know whether
  /// the pointer has moved into it or was there when it was shown.
  void pointerSeen(int x, int y) override;

  /// Opens the way to `node`, makes its row the current one and scrolls there with the next
  /// `prepare`. Does nothing when the tree does not lead to it.
  void revealNode(sizewalk::NodeId node);
  /// The same with a folder that the user goes to: its row is opened, unless it holds very much,
  /// and the first few below it are brought into view as well.
  void revealFolder(sizewalk::NodeId folder);
  /// Has the next `prepare` bring a row into view.
  void scrollToRow(std::size_t row);

  bool takesKeyboard() const override { return true; }
  void paint(ui::Canvas& canvas) const override;
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void leave() override;
  void wheel(const ui::MouseEvent& event, int dy) override;
  bool key(const ui::KeyEvent& event) override;
  /// Of the keys those alone that search for a name, and those that ask for the context menu: what
  /// the list takes while another view has the keyboard.
  bool keyFromElsewhere(const ui::KeyEvent& event);
  void tick(std::int64_t nowMs) override;

  const FolderRows& rows() const { return rows_; }
  /// The item of the row under the pointer.
  std::optional<sizewalk::NodeId> hovered() const;
  /// Nothing while there are no rows.
  std::optional<sizewalk::NodeId> current() const { return cursor_.current(); }
  /// What is typed to search for a name; empty while no search runs.
  std::string_view typed() const { return cursor_.typed(); }
  /// The row that `scrollToRow` asked for; -1 when none is due.
  std::ptrdiff_t pendingRow() const;

 protected:
  /// Does the scrolling that is due.
  bool bringUpToDate() override;
  void paintRow(ui::Canvas& canvas, std::size_t row, const ui::Rect& place) const override;
  bool isSelected(std::size_t row) const override { return selection_.contains(nodeAt(row)); }
  bool isCurrent(std::size_t row) const override { return cursor_.current() == nodeAt(row); }

 private:
  /// What a row in view looks like, taken from the tree once a frame: while that grows, two halves
  /// of a row that are painted one after the other are to tell the same.
  struct ShownRow {
    FolderRow row;
    std::int64_t size = 0;
    std::optional<ui::Colour> swatch;
    bool selected = false;
    bool inFocus = false;
    /// The ring is there.
    bool current = false;
    friend bool operator==(const ShownRow&, const ShownRow&) = default;
  };

  ShownRow lookAt(std::size_t row) const;
  void lookAtRowsInView();
  sizewalk::NodeId nodeAt(std::size_t row) const { return rows_.rows()[row].node; }
  std::optional<std::size_t> currentRow() const;
  std::optional<std::size_t> parentRow(std::size_t row) const;
  FolderRowPlaces placesOf(std::size_t row) const;

  /// Has `change` make the rows anew and puts all that depends on them right.
  void changeRows(const std::function<void()>& change);
  /// The row under a pointer that has moved there.
  std::optional<std::size_t> heldRow() const;
  /// As `refresh`, unless the held row could not stay in its place.
  bool refreshAround(std::size_t held);
  /// Rows come or go, which does not wait.
  bool showsOthers(const std::vector<FolderRow>& rows) const;
  void letGoOfRow();
  /// The rows take the order that waits with the next `prepare`.
  void endWait();
  /// The row that a key acts on. Shows the rows that wait when it is among them.
  std::optional<std::size_t> rowForKey();
  /// Which row `changeRows` leaves where it is on the screen.
  std::optional<std::size_t> rowToKeep() const;
  void countRows() { setCount(rows_.rows().size()); }
  void scrollIfDue();
  /// How many of the rows that follow an open folder's are to be seen with it.
  std::size_t rowsToSeeBelow(std::size_t row) const;
  /// What is in view is up to the user from now on.
  void takeOver();
  /// Until then it is as it was shown, but while a row is held.
  void goHome();

  void pressRow(std::size_t row, const ui::MouseEvent& event);
  void pressSecondary(std::size_t row, const ui::MouseEvent& event);
  void pickRow(std::size_t row, const ui::MouseEvent& event);
  void openRow(std::size_t row);
  void closeRow(std::size_t row);
  void selectOnly(sizewalk::NodeId node);
  void selectRangeTo(std::size_t row);
  void selectSiblings(std::size_t row);

  void moveTo(std::size_t row, bool extend);
  bool keyWithCtrl(const ui::KeyEvent& event, std::size_t row);
  bool keyOnRow(const ui::KeyEvent& event, std::size_t row);
  void goRight(std::size_t row, bool extend);
  void goLeft(std::size_t row, bool extend);
  bool askForMenu(const ui::KeyEvent& event, std::size_t row);
  bool typeAhead(const ui::KeyEvent& event, std::size_t row);
  void forgetTyped();

  const KindColours* colours_;
  Selection& selection_;
  const sizewalk::FileTree* tree_ = nullptr;
  MeasureSettings measure_;
  FolderRows rows_;
  ui::ListCursor<sizewalk::NodeId> cursor_;
  /// Nothing while it is not known.
  std::optional<sizewalk::NodeId> mapFocus_;
  /// The rows from `firstShown_` on, as of the last `prepare`.
  std::vector<ShownRow> shownRows_;
  std::size_t firstShown_ = 0;
  /// Whose row is to be brought into view, and whether with some of what is in it.
  std::optional<sizewalk::NodeId> pending_;
  bool pendingContent_ = false;
  PointerHold hold_;
  /// The rows are not in the order that the tree has by now.
  bool orderWaits_ = false;
  /// They wait no more, whichever row is held.
  bool orderDue_ = false;
  bool growing_ = false;
  Returning returning_;
  bool takenOver_ = false;
  /// Until it is taken over: a row and its place in view; without one the list's top.
  std::optional<sizewalk::NodeId> top_;
  std::int64_t topAt_ = 0;
  /// What the last press picked by itself: only a second press on the same is a double one, since
  /// rows may have moved under the pointer between the two.
  std::optional<sizewalk::NodeId> pressed_;
};

}  // namespace app
