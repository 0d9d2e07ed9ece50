#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/frame/divider.h"
#include "app/frame/frame_layout.h"
#include "app/frame/pending_panel.h"
#include "app/frame/pending_rows.h"
#include "app/frame/screen.h"
#include "app/frame/status_line.h"
#include "app/frame/status_text.h"
#include "app/frame/toolbar.h"
#include "app/lists/folder_list.h"
#include "app/lists/kinds_table.h"
#include "app/map/background_render.h"
#include "app/map/extra_blocks.h"
#include "app/map/treemap_picture.h"
#include "app/map/treemap_view.h"
#include "app/model/commands.h"
#include "app/model/kind_colours.h"
#include "app/model/map_focus.h"
#include "app/model/measure.h"
#include "app/model/remembered_place.h"
#include "app/model/selection.h"
#include "app/model/settings_store.h"
#include "sizewalk/file_tree.h"
#include "ui/canvas.h"
#include "ui/connection.h"
#include "ui/input.h"
#include "ui/widgets/style.h"

namespace app {

/// The settings that the view of a scan depends on.
struct ScanScreenSettings {
  bool listAboveMap = setting::kSplitHorizontally.fallback;
  bool showKinds = setting::kShowFileKinds.fallback;
  bool consistentKindColours = setting::kConsistentKindColours.fallback;
  ExtraBlockSettings extraBlocks = {};

  /// As they are stored.
  static ScanScreenSettings of(const SettingsStore& store);
};

/// The window while a scan is shown: toolbar, folder list, kinds table, map and status line, laid
/// out around two dividers, below them what waits to be deleted, with one selection and one folder
/// in focus. Hands input to the part that it is for, and what changes in one part to the others.
/// Window thread only.
class ScanScreen : public Screen {
 public:
  std::function<void(const Command&)> onCommand;
  /// The context menu of an item, which is selected, at (x, y).
  std::function<void(sizewalk::NodeId, int x, int y, Command::By by)> onContextMenu;
  /// The buttons of the pending panel.
  std::function<void(std::uint64_t id)> onUndelete;
  std::function<void()> onUndeleteAll;
  std::function<void()> onDeleteNow;
  /// Between two frames a part of the map was sent to the X server, which took so long.
  std::function<void(std::chrono::steady_clock::duration took)> onMapPartSent;

  /// All outlive the view. `colours` are those of the last frame: they become those of the next
  /// picture of the map when that is shown, so that no part is ahead of another. Without `post` the
  /// map is never drawn in the background.
  ScanScreen(ui::Connection& connection, const ui::Style& style, KindColours& colours,
             BackgroundRender::Post post = {});

  /// Shows `tree` from the scanned folder on; nothing when it is null.
  void show(std::shared_ptr<const sizewalk::FileTree> tree);
  /// The same with the tree of another scan of the same folder, and comes back to where the user
  /// was as that tree fills: the folder in focus, the open rows, the current one and how far the
  /// list was scrolled. What the user does himself meanwhile counts instead.
  void showAgain(std::shared_ptr<const sizewalk::FileTree> tree);
  /// A folder of the tree is about to be read again: as `showAgain`.
  void rememberPlace();
  void setMeasure(const MeasureSettings& measure);
  void setSettings(const ScanScreenSettings& settings);
  /// What the status line tells of the scan. Its sums are taken from the tree in every frame.
  void setScanStatus(const ScanStatus& status);
  /// Of the volume that holds the scanned folder; nothing while that is not known.
  void setVolumeSpace(const std::optional<VolumeSpace>& space);
  /// What waits to be deleted. The panel is there while there is any; the map is laid out anew only
  /// when the panel's height changes.
  void setPending(std::vector<PendingRow> rows);
  /// The tree has changed: all parts look at it anew with the next frame, the map perhaps a little
  /// later.
  void treeChanged();
  /// The next frame shows the tree as it is by then, on the map as well.
  void showAllInNextFrame();

  /// Letters that the view with the keyboard has no use for go to the list; Escape takes back a
  /// drag of a divider, else a card, then the highlight of a kind.
  bool key(const ui::KeyEvent& event) override;
  void press(const ui::MouseEvent& event) override;
  void motion(const ui::MouseEvent& event) override;
  void wheel(const ui::MouseEvent& event, int dy) override;
  void leave() override;
  void releasePointer() override;
  void tick(std::int64_t nowMs) override;
  ui::Rect menuButton() const override {
    return toolbar_.layout().place(Action::OpenApplicationMenu);
  }
  /// Where the measure menu hangs from.
  ui::Rect measureButton() const { return toolbar_.layout().place(Action::OpenMeasureMenu); }

  MapFocus& focus() { return focus_; }
  const MapFocus& focus() const { return focus_; }
  Selection& selection() { return selection_; }
  const FrameLayout& layout() const { return layout_; }
  // The parts, to look at.
  const Toolbar& toolbar() const { return toolbar_; }
  const FolderList& list() const { return list_; }
  const KindsTable& kinds() const { return kinds_; }
  const TreemapPicture& picture() const { return picture_; }
  const TreemapView& map() const { return map_; }
  const PendingPanel& pending() const { return pending_; }
  const StatusLine& statusLine() const { return statusLine_; }
  /// The item that a command without a place of its own is about: the one that is selected, of
  /// several the current row if it is one of them, else the folder in focus.
  sizewalk::NodeId target() const;

 protected:
  void layOut() override;
  ui::View& mainView() override { return list_; }
  /// Costly when it looked at the tree or made a picture.
  bool bringUpToDate() override;

 private:
  void connectToolbar();
  void connectList();
  void connectKinds();
  void connectMap();
  void connectDividers();
  void connectPending();
  void layOutAgain();
  bool keyOfParts(const ui::KeyEvent& event);
  /// The places of the dividers in the arrangement that is shown.
  std::optional<double>& mainPlace();
  std::optional<double>& kindsPlace();
  bool takeDividerBack();
  bool dismiss();
  void lookAtTree();
  void comeBack();
  void focusChanged();
  /// True when there are others.
  bool updateExtraBlocks();
  void updateToolbar();
  void updateStatus();
  void addUpSelection();
  StatusNote statusRight() const;
  std::optional<sizewalk::NodeId> lookedAt() const;
  void pointerUsed();
  void activate(sizewalk::NodeId node);

  const ui::Style& style_;
  /// Of what is seen: the rows and the map.
  KindColours& colours_;
  /// Those that the next picture of the map takes, by the ranks of the tree as it is known.
  KindColours nextColours_;
  /// Above the views, which look at it for as long as they show it.
  std::shared_ptr<const sizewalk::FileTree> tree_;
  MeasureSettings measure_;
  ScanScreenSettings settings_;
  ScanStatus status_;
  std::optional<VolumeSpace> volume_;
  FrameLayout layout_;
  /// Where the user has put the dividers, for this run.
  DividerPlaces dividerPlaces_;
  Selection selection_;
  MapFocus focus_;
  /// Where the user was before the tree was read again.
  RememberedPlace place_;
  bool comingBack_ = false;
  Toolbar toolbar_;
  FolderList list_;
  KindsTable kinds_;
  TreemapPicture picture_;
  TreemapView map_;
  Divider mainDivider_;
  Divider kindsDivider_;
  PendingPanel pending_;
  StatusLine statusLine_;
  /// Where the pointer was seen last, and whether a key was used since the pointer was: then the
  /// status line tells of the current row.
  std::optional<std::pair<int, int>> pointer_;
  bool keyed_ = false;
  // What the next `prepare` has to do.
  bool treeDirty_ = false;
  bool selectionDirty_ = false;
  /// Of what is selected, nothing counted twice. Adding it up takes as long as the selection is
  /// large, so not in every frame.
  std::int64_t selectedSize_ = 0;
};

}  // namespace app
