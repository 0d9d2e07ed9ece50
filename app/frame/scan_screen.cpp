#include "app/frame/scan_screen.h"

#include <initializer_list>
#include <utility>

#include "app/frame/scan_progress.h"
#include "app/model/format.h"
#include "base/detached_threads.h"
#include "ui/keys.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;

namespace {

/// The window takes such a key; the current row goes with the focus.
bool movesFocus(const ui::KeyEvent& event) {
  const auto command = commandFor(event);
  if (!command) return false;
  using enum Action;
  const Action action = command->action;
  return action == GoOut || action == GoToScannedFolder || action == GoToPrevious ||
         action == GoToNext;
}

}  // namespace

ScanScreenSettings ScanScreenSettings::of(const SettingsStore& store) {
  return {.listAboveMap = store.get(setting::kSplitHorizontally),
          .showKinds = store.get(setting::kShowFileKinds),
          .consistentKindColours = store.get(setting::kConsistentKindColours),
          .extraBlocks = {.freeSpace = store.get(setting::kShowFreeSpace),
                          .otherSpace = store.get(setting::kShowOtherSpace)}};
}

ScanScreen::ScanScreen(ui::Connection& connection, const ui::Style& style, KindColours& colours,
                       BackgroundRender::Post post)
    : Screen(style),
      style_(style),
      colours_(colours),
      nextColours_(colours),
      toolbar_(style),
      list_(style, &colours, selection_),
      kinds_(style, &colours),
      picture_(connection, nextColours_, std::move(post)),
      map_(style, picture_, focus_, selection_),
      mainDivider_(style),
      kindsDivider_(style),
      pending_(style),
      statusLine_(style) {
  for (ui::View* view :
       std::initializer_list<ui::View*>{&toolbar_, &list_, &kinds_, &map_, &mainDivider_,
                                        &kindsDivider_, &pending_, &statusLine_}) {
    add(*view);
  }
  toolbar_.onCommand = [this](const Command& command) {
    if (onCommand) onCommand(command);
  };
  connectList();
  connectKinds();
  connectMap();
  connectDividers();
  connectPending();
  selection_.onChanged = [this] {
    selectionDirty_ = true;
    needsFrame();
  };
  focus_.onChanged = [this] { focusChanged(); };
  giveKeyboardTo(&list_);
}

void ScanScreen::connectList() {
  list_.onActivate = [this](NodeId node) { activate(node); };
  list_.onContextMenu = [this](NodeId node, int x, int y, Command::By by) {
    if (onContextMenu) onContextMenu(node, x, y, by);
  };
  list_.onClosed = [this](NodeId node) { place_.rememberClosed(*tree_, node); };
}

void ScanScreen::connectKinds() {
  kinds_.onKindSelected = [this](std::optional<sizewalk::KindIndex> kind) {
    picture_.setHighlight(kind);
    needsFrame();
  };
}

void ScanScreen::connectMap() {
  picture_.onRendered = [this] { needsFrame(); };
  picture_.onPartSent = [this](auto took) {
    if (onMapPartSent) onMapPartSent(took);
  };
  map_.onPicked = [this](NodeId node) { list_.revealNode(node); };
  map_.onContextMenu = [this](NodeId node, int x, int y) {
    if (onContextMenu) onContextMenu(node, x, y, Command::By::Pointer);
  };
}

void ScanScreen::connectDividers() {
  mainDivider_.onMoved = [this](std::optional<double> share) {
    mainPlace() = share;
    layOutAgain();
  };
  kindsDivider_.onMoved = [this](std::optional<double> share) {
    kindsPlace() = share;
    layOutAgain();
  };
}

std::optional<double>& ScanScreen::mainPlace() {
  return settings_.listAboveMap ? dividerPlaces_.listHeight : dividerPlaces_.column;
}

std::optional<double>& ScanScreen::kindsPlace() {
  return settings_.listAboveMap ? dividerPlaces_.mapBesideKinds : dividerPlaces_.listOverKinds;
}

void ScanScreen::connectPending() {
  pending_.onUndelete = [this](std::uint64_t id) {
    if (onUndelete) onUndelete(id);
  };
  pending_.onUndeleteAll = [this] {
    if (onUndeleteAll) onUndeleteAll();
  };
  pending_.onDeleteNow = [this] {
    if (onDeleteNow) onDeleteNow();
  };
}

void ScanScreen::show(std::shared_ptr<const sizewalk::FileTree> tree) {
  std::shared_ptr<const sizewalk::FileTree> last = tree_;  // until no part looks at it
  selection_.clear();
  keyed_ = false;
  place_.forget();
  focus_.reset(tree.get());
  releasePointer();
  kinds_.clearSelection();
  tree_ = std::move(tree);
  volume_.reset();
  list_.show(tree_.get());
  kinds_.setRows({});
  picture_.setExtraBlocks({});
  picture_.show(tree_, kRootNode);
  map_.reset();
  updateToolbar();
  giveKeyboardTo(&list_);
  treeChanged();
  changed();
  // Whoever else holds it frees it.
  if (last.use_count() == 1) base::destroyElsewhere(std::move(last));
}

void ScanScreen::showAgain(std::shared_ptr<const sizewalk::FileTree> tree) {
  rememberPlace();
  RememberedPlace place = std::exchange(place_, {});
  show(std::move(tree));
  place_ = std::move(place);
  list_.beginReturn();
}

void ScanScreen::rememberPlace() {
  if (!tree_) return;
  using enum RememberedPlace::Part;
  const FolderList::Returning& list = list_.returning();
  if (!list.openRows) place_.giveUp(OpenRows);
  if (!list.currentRow) place_.giveUp(CurrentRow);
  if (!list.scroll) place_.giveUp(Scroll);
  place_.remember(*tree_, focus_.way(), list_.place());
  list_.beginReturn();
}

void ScanScreen::setMeasure(const MeasureSettings& measure) {
  if (measure_ == measure) return;
  measure_ = measure;
  list_.setMeasure(measure);
  picture_.setMeasure(measure);
  treeChanged();
}

void ScanScreen::setSettings(const ScanScreenSettings& settings) {
  // Of the settings these and the colours are seen in the map's picture, but for its size.
  const bool otherBlocks = settings.extraBlocks != settings_.extraBlocks;
  settings_ = settings;
  if (otherBlocks && updateExtraBlocks()) picture_.markDirty();
  if (nextColours_.consistent() != settings.consistentKindColours) {
    nextColours_.setConsistent(settings.consistentKindColours);
    picture_.markDirty();
  }
  if (!settings.showKinds) {
    kinds_.clearSelection();
    if (keyboardOwner() == &kinds_) giveKeyboardTo(&list_);
  }
  layOutAgain();
}

void ScanScreen::setScanStatus(const ScanStatus& status) {
  status_ = status;
  list_.setGrowing(status.scanning);
  picture_.setGrowing(status.scanning);
  map_.setScanStatus(status);
  needsFrame();
}

void ScanScreen::setVolumeSpace(const std::optional<VolumeSpace>& space) {
  volume_ = space;
  if (updateExtraBlocks()) needsFrame();
}

void ScanScreen::setPending(std::vector<PendingRow> rows) {
  const int before = pending_.wantedHeight();
  pending_.setRows(std::move(rows));
  if (pending_.rows().empty() && keyboardOwner() == &pending_) giveKeyboardTo(&list_);
  if (pending_.wantedHeight() != before) layOutAgain();
}

void ScanScreen::treeChanged() {
  treeDirty_ = true;
  needsFrame();
}

void ScanScreen::showAllInNextFrame() {
  picture_.markDirty();
  treeChanged();
}

void ScanScreen::layOutAgain() {
  layOut();
  changed();
}

void ScanScreen::layOut() {
  layout_ = layOutFrame({.width = rect().w,
                         .height = rect().h,
                         .scale = style_.scale(),
                         .lineHeight = style_.lineHeight(),
                         .listAboveMap = settings_.listAboveMap,
                         .showKinds = settings_.showKinds,
                         .updateHeight = updateBar().wantedHeight(),
                         .pendingHeight = pending_.wantedHeight(),
                         .dividers = dividerPlaces_});
  toolbar_.setRect(layout_.toolbar);
  placeUpdateBar(layout_.update);
  list_.setRect(layout_.list);
  kinds_.setRect(layout_.kinds);
  map_.setRect(layout_.map);
  pending_.setRect(layout_.pending);
  statusLine_.setRect(layout_.status);
  mainDivider_.setRect(layout_.mainDivider);
  kindsDivider_.setRect(layout_.kindsDivider);
  using enum Divider::Direction;
  mainDivider_.setPanes(settings_.listAboveMap ? Down : Across, layout_.list, layout_.map,
                        mainPlace());
  if (settings_.listAboveMap) {
    kindsDivider_.setPanes(Across, layout_.map, layout_.kinds, kindsPlace());
  } else {
    kindsDivider_.setPanes(Down, layout_.list, layout_.kinds, kindsPlace());
  }
}

bool ScanScreen::bringUpToDate() {
  const bool looked = std::exchange(treeDirty_, false);
  if (looked) lookAtTree();
  const bool selected = std::exchange(selectionDirty_, false);
  if (selected) picture_.setSelected(selection_.sorted());
  const bool drawn = picture_.update();
  if (looked || drawn) colours_ = picture_.shownColours();
  if (looked || drawn) map_.refresh();
  if (selected || looked) addUpSelection();
  list_.setMapFocus(focus_.current());
  updateToolbar();
  updateStatus();
  Screen::bringUpToDate();
  return looked || drawn;
}

void ScanScreen::lookAtTree() {
  if (!tree_) return;
  selection_.keepVisible(*tree_);
  comeBack();
  list_.refresh();
  const bool complete = !status_.scanning && !status_.stopped;
  if (complete) {
    place_.endSearch();
    list_.endReturn();
  }
  std::vector<KindRow> kinds = kindRows(*tree_, measure_, {});
  nextColours_.setKindSlots(kindSlotsBySize(kinds));
  kinds_.setRows(std::move(kinds));
  updateExtraBlocks();
  picture_.markOutdated();
}

/// As far as the tree has been read by now.
void ScanScreen::comeBack() {
  place_.lookIn(*tree_);
  if (place_.seeks(RememberedPlace::Part::Focus)) {
    comingBack_ = true;
    focus_.takeUp(place_.focus());
    comingBack_ = false;
  } else {
    focus_.keepVisible();
  }
  list_.returnTo(place_.takeList());
}

bool ScanScreen::updateExtraBlocks() {
  const bool shown = tree_ && tree_->nodeCount() > 0 && focus_.current() == kRootNode;
  return picture_.setExtraBlocks(
      shown ? extraBlocksFor(volume_, tree_->allocatedSize(kRootNode), settings_.extraBlocks)
            : std::vector<ExtraBlock>{});
}

void ScanScreen::focusChanged() {
  updateExtraBlocks();
  picture_.show(tree_, focus_.current());
  if (!comingBack_) {
    place_.giveUp(RememberedPlace::Part::Focus);
    list_.revealFolder(focus_.current());
  }
  map_.hideCard();
  changed();
}

void ScanScreen::updateToolbar() {
  toolbar_.update({.tree = tree_.get(),
                   .scanning = status_.scanning,
                   .canGoUp = focus_.canGoOut(),
                   .measure = measure_.measure,
                   .focus = focus_.current()});
  toolbar_.setFigures(tree_ ? folderFigures(*tree_, focus_.current(), measure_) : std::nullopt);
  const bool found = tree_ && tree_->nodeCount() > 0;
  toolbar_.setProgress(scanProgress(status_, volume_, found ? tree_->allocatedSize(kRootNode) : 0));
}

void ScanScreen::updateStatus() {
  if (!tree_) {
    statusLine_.setTexts({}, {});
    return;
  }
  ScanStatus status = status_;
  status.nodes = tree_->nodeCount();
  if (status.nodes > 0) {
    status.total = measureValue(*tree_, kRootNode, measure_);
    status.items = static_cast<std::int64_t>(tree_->totals().files);
  }
  statusLine_.setTexts(statusText(status), statusRight());
}

void ScanScreen::addUpSelection() {
  selectedSize_ = 0;
  if (selection_.size() < 2) return;
  for (const NodeId node : selection_.outermost(*tree_)) {
    selectedSize_ = sumOfSizes(selectedSize_, measureValue(*tree_, node, measure_));
  }
}

StatusNote ScanScreen::statusRight() const {
  const auto node = lookedAt();
  const auto kind = kinds_.selectedKind();
  const std::string button = toolbar_.hint();
  const std::string item = node ? itemText(*tree_, *node) : std::string();
  const std::string highlighted = kind ? kindRowName(*kind) : std::string();
  return statusNote({.typed = list_.typed(),
                     .button = button,
                     .selected = static_cast<std::int64_t>(selection_.size()),
                     .selectedBytes = selectedSize_,
                     .item = item,
                     .highlighted = highlighted});
}

/// The item that was used last. Keys that are used on a highlighted kind are used on none.
std::optional<NodeId> ScanScreen::lookedAt() const {
  if (keyed_) {
    const bool onKind = keyboardOwner() == &kinds_ && kinds_.selectedKind();
    return onKind ? std::nullopt : list_.current();
  }
  const auto onMap = map_.hovered();
  return onMap ? onMap : list_.hovered();
}

bool ScanScreen::key(const ui::KeyEvent& event) {
  // What the pointer holds comes before what the keyboard is in.
  if (ui::key::plain(event.keysym) == ui::key::kEscape && takeDividerBack()) return true;
  const bool used = keyOfParts(event);
  if (used || movesFocus(event)) {
    keyed_ = true;
    needsFrame();
  }
  return used;
}

bool ScanScreen::keyOfParts(const ui::KeyEvent& event) {
  if (Screen::key(event)) return true;
  if (ui::key::plain(event.keysym) == ui::key::kEscape && dismiss()) return true;
  // Nothing that would move or select behind the user's back.
  return keyboardOwner() != &list_ && list_.keyFromElsewhere(event);
}

bool ScanScreen::takeDividerBack() { return mainDivider_.takeBack() || kindsDivider_.takeBack(); }

bool ScanScreen::dismiss() {
  if (map_.hideCard()) return true;
  const bool highlighted = kinds_.selectedKind().has_value();
  kinds_.clearSelection();
  return highlighted;
}

void ScanScreen::press(const ui::MouseEvent& event) {
  pointerUsed();
  Screen::press(event);
}

void ScanScreen::wheel(const ui::MouseEvent& event, int dy) {
  pointerUsed();
  Screen::wheel(event, dy);
}

void ScanScreen::pointerUsed() {
  if (std::exchange(keyed_, false)) needsFrame();
}

void ScanScreen::motion(const ui::MouseEvent& event) {
  Screen::motion(event);
  // What lay over the screen and is gone tells of a pointer that has not moved.
  const std::pair now(event.x, event.y);
  if (pointer_ != now) pointerUsed();
  pointer_ = now;
}

void ScanScreen::leave() {
  Screen::leave();
  list_.pointerSeen(-1, -1);
}

void ScanScreen::releasePointer() {
  list_.cover();
  Screen::releasePointer();
}

void ScanScreen::tick(std::int64_t nowMs) {
  Screen::tick(nowMs);
  if (picture_.due()) needsFrame();
}

void ScanScreen::activate(NodeId node) {
  if (tree_->isDirectory(node)) {
    focus_.go(node);
  } else if (onCommand) {
    onCommand({.action = Action::Open, .target = node});
  }
}

NodeId ScanScreen::target() const {
  if (selection_.size() == 1) return *selection_.nodes().begin();
  const auto current = list_.current();
  return current && selection_.contains(*current) ? *current : focus_.current();
}

}  // namespace app
