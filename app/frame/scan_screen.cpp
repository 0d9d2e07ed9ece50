#include "app/frame/scan_screen.h"

#include <utility>

#include "app/model/format.h"
#include "ui/keys.h"
#include "ui/window.h"

namespace app {

using sizewalk::kRootNode;
using sizewalk::NodeId;

namespace {
constexpr int kPrimaryButton = 1;
}  // namespace

ScanScreen::ScanScreen(ui::Connection& connection, const ui::Style& style, KindColours& colours,
                       BackgroundRender::Post post)
    : style_(style),
      colours_(colours),
      toolbar_(style),
      list_(style, &colours, selection_),
      kinds_(style, &colours),
      picture_(connection, colours, std::move(post)),
      map_(style, picture_, focus_, selection_),
      statusLine_(style) {
  connectToolbar();
  connectList();
  connectKinds();
  connectMap();
  addPointerTargets();
  dividers_.onMoved = [this] { layOut(); };
  selection_.onChanged = [this] {
    selectionDirty_ = true;
    changed();
  };
  focus_.onChanged = [this] { focusChanged(); };
  giveKeyboardTo(Part::List);
}

void ScanScreen::connectToolbar() {
  const auto command = [this](Command wanted) {
    return [this, wanted] {
      if (onCommand) onCommand(wanted);
    };
  };
  toolbar_.onOpen = command(Command::LeaveScan);
  toolbar_.onStop = command(Command::StopScan);
  toolbar_.onRescan = command(Command::Rescan);
  toolbar_.onUp = command(Command::GoOut);
  toolbar_.onSegment = [this](NodeId node) { focus_.go(node); };
  toolbar_.onMeasureMenu = [this](const ui::Rect& place) {
    if (onMeasureMenu) onMeasureMenu(place);
  };
  toolbar_.onAppMenu = [this](const ui::Rect& place) {
    if (onAppMenu) onAppMenu(place);
  };
}

void ScanScreen::connectList() {
  list_.onChanged = [this] { changed(); };
  list_.onActivate = [this](NodeId node) { activate(node); };
  list_.onContextMenu = [this](NodeId node, int x, int y) {
    if (onContextMenu) onContextMenu(node, x, y);
  };
}

void ScanScreen::connectKinds() {
  kinds_.onChanged = [this] { changed(); };
  kinds_.onKindSelected = [this](std::optional<int> kind) {
    picture_.setHighlight(kind);
    changed();
  };
}

void ScanScreen::connectMap() {
  picture_.onRendered = [this] { changed(); };
  map_.onChanged = [this] { changed(); };
  map_.onPicked = [this](NodeId node) { list_.revealNode(node); };
  map_.onContextMenu = [this](NodeId node, int x, int y) {
    if (onContextMenu) onContextMenu(node, x, y);
  };
}

void ScanScreen::addPointerTargets() {
  const auto ifChanged = [this](bool change) {
    if (change) changed();
  };
  // Other buttons end no drag.
  const auto ifPrimary = [](auto act) {
    return [act](const ui::MouseEvent& event) {
      if (event.button == kPrimaryButton) act();
    };
  };
  toolbarTarget_ =
      pointers_.add({.press = [=, this](const auto& e) { ifChanged(toolbar_.press(e)); },
                     .motion = [=, this](const auto& e) { ifChanged(toolbar_.motion(e)); },
                     .release = [=, this](const auto& e) { ifChanged(toolbar_.release(e)); },
                     .leave = [=, this] { ifChanged(toolbar_.leave()); },
                     .wheel = {}});
  listTarget_ = pointers_.add({.press = [this](const auto& e) { list_.press(e); },
                               .motion = [this](const auto& e) { list_.motion(e); },
                               .release = ifPrimary([this] { list_.release(); }),
                               .leave = [this] { list_.leave(); },
                               .wheel = [this](const auto&, int dy) { list_.wheel(dy); }});
  kindsTarget_ = pointers_.add({.press = [this](const auto& e) { kinds_.press(e); },
                                .motion = [this](const auto& e) { kinds_.motion(e); },
                                .release = ifPrimary([this] { kinds_.release(); }),
                                .leave = [this] { kinds_.leave(); },
                                .wheel = [this](const auto&, int dy) { kinds_.wheel(dy); }});
  mapTarget_ =
      pointers_.add({.press = [this](const auto& e) { map_.press(e); },
                     .motion = [this](const auto& e) { map_.motion(e, ui::Window::now()); },
                     .release = {},
                     .leave = [this] { map_.leave(); },
                     .wheel = [this](const auto& e, int dy) { map_.wheel(e, dy); }});
  const ui::PointerRouter::Target divider = {.press = [this](const auto& e) { dividers_.press(e); },
                                             .motion = [this](const auto& e) { dividers_.drag(e); },
                                             .release = ifPrimary([this] { dividers_.release(); }),
                                             .leave = {},
                                             .wheel = {}};
  mainDividerTarget_ = pointers_.add(divider);
  kindsDividerTarget_ = pointers_.add(divider);
}

void ScanScreen::show(std::shared_ptr<const sizewalk::FileTree> tree) {
  const std::shared_ptr<const sizewalk::FileTree> last = tree_;  // until no part looks at it
  selection_.clear();
  focus_.reset(tree.get());
  hide();
  kinds_.clearSelection();
  tree_ = std::move(tree);
  volume_.reset();
  list_.show(tree_.get());
  kinds_.setRows({});
  picture_.setExtraBlocks({});
  picture_.show(tree_, kRootNode);
  map_.reset();
  updateToolbar();
  giveKeyboardTo(Part::List);
  treeChanged();
}

void ScanScreen::setMeasure(const MeasureSettings& measure) {
  measure_ = measure;
  list_.setMeasure(measure);
  picture_.setMeasure(measure);
  treeChanged();
}

void ScanScreen::setSettings(const ScanScreenSettings& settings) {
  settings_ = settings;
  colours_.setConsistent(settings.consistentKindColours);
  picture_.markDirty();
  if (!settings.showKinds) {
    kinds_.clearSelection();
    if (keyboard_ == Part::Kinds) giveKeyboardTo(Part::List);
  }
  layOut();
  treeChanged();
}

void ScanScreen::setScanStatus(const ScanStatus& status) {
  status_ = status;
  picture_.setGrowing(status.scanning);
  changed();
}

void ScanScreen::setVolumeSpace(const std::optional<VolumeSpace>& space) {
  volume_ = space;
  treeChanged();
}

void ScanScreen::treeChanged() {
  treeDirty_ = true;
  changed();
}

void ScanScreen::drawAtOnce() {
  picture_.markDirty();
  treeChanged();
}

void ScanScreen::setSize(int width, int height) {
  width_ = width;
  height_ = height;
  layOut();
}

void ScanScreen::layOut() {
  layout_ = layOutFrame({.width = width_,
                         .height = height_,
                         .scale = style_.scale(),
                         .lineHeight = style_.lineHeight(),
                         .listAboveMap = settings_.listAboveMap,
                         .showKinds = settings_.showKinds,
                         .dividers = dividers_.places()});
  dividers_.follow(layout_, settings_.listAboveMap);
  toolbar_.setRect(layout_.toolbar);
  list_.setRect(layout_.list);
  kinds_.setRect(layout_.kinds);
  picture_.setRect(layout_.map);
  statusLine_.setRect(layout_.status);
  pointers_.setRect(toolbarTarget_, layout_.toolbar);
  pointers_.setRect(listTarget_, layout_.list);
  pointers_.setRect(kindsTarget_, layout_.kinds);
  pointers_.setRect(mapTarget_, layout_.map);
  pointers_.setRect(mainDividerTarget_, layout_.mainDivider);
  pointers_.setRect(kindsDividerTarget_, layout_.kindsDivider);
  changed();
}

bool ScanScreen::bringUpToDate() {
  const bool looked = std::exchange(treeDirty_, false);
  if (looked) lookAtTree();
  const bool drawn = picture_.update();
  const bool selected = std::exchange(selectionDirty_, false);
  if (selected || looked || drawn) map_.refresh();
  if (selected || looked) addUpSelection();
  list_.update();
  updateToolbar();
  updateStatus();
  return looked || drawn;
}

void ScanScreen::lookAtTree() {
  if (!tree_) return;
  list_.refresh();
  std::vector<KindRow> kinds = kindRows(*tree_, measure_, {});
  colours_.setKindSlots(kindSlotsBySize(kinds));
  kinds_.setRows(std::move(kinds));
  updateExtraBlocks();
  picture_.markOutdated();
}

void ScanScreen::updateExtraBlocks() {
  const bool shown = tree_ && tree_->nodeCount() > 0 && focus_.current() == kRootNode;
  picture_.setExtraBlocks(shown ? extraBlocksFor(volume_, measureValue(*tree_, kRootNode, measure_),
                                                 settings_.extraBlocks)
                                : std::vector<ExtraBlock>{});
}

void ScanScreen::focusChanged() {
  updateExtraBlocks();
  picture_.show(tree_, focus_.current());
  list_.revealNode(focus_.current());
  map_.hideCard();
  changed();
}

void ScanScreen::updateToolbar() {
  toolbar_.update({.tree = tree_.get(),
                   .scanning = status_.scanning,
                   .canGoUp = focus_.canGoOut(),
                   .measure = measure_.measure,
                   .focus = focus_.current()});
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

std::string ScanScreen::statusRight() const {
  if (selection_.size() > 1) {
    return selectionText(static_cast<std::int64_t>(selection_.size()), selectedSize_);
  }
  const auto node = hovered();
  return node ? tree_->path(*node) : std::string();
}

std::optional<NodeId> ScanScreen::hovered() const {
  const auto onMap = map_.hovered();
  return onMap ? onMap : list_.hovered();
}

void ScanScreen::paint(ui::Canvas& canvas) const {
  const ui::Palette& palette = style_.palette();
  toolbar_.paint(canvas);
  list_.paint(canvas);
  if (!layout_.kinds.empty()) kinds_.paint(canvas);
  map_.paint(canvas);
  canvas.fillRect(layout_.mainDivider, palette.window);
  canvas.fillRect(layout_.kindsDivider, palette.window);
  statusLine_.paint(canvas);
  map_.paintCard(canvas);
}

void ScanScreen::press(const ui::MouseEvent& event) {
  lastPointer_ = event;
  const auto part = pointers_.press(event);
  if (part == listTarget_) giveKeyboardTo(Part::List);
  if (part == kindsTarget_) giveKeyboardTo(Part::Kinds);
  if (part == mapTarget_) giveKeyboardTo(Part::Map);
}

void ScanScreen::motion(const ui::MouseEvent& event) {
  lastPointer_ = event;
  pointers_.motion(event);
}

void ScanScreen::release(const ui::MouseEvent& event) {
  lastPointer_ = event;
  pointers_.release(event);
}

void ScanScreen::leave() { pointers_.leave(); }

void ScanScreen::hide() {
  pointers_.reset();
  lastPointer_ = {.x = -1, .y = -1};
}

void ScanScreen::wheel(const ui::MouseEvent& event, int dy) { pointers_.wheel(event, dy); }

void ScanScreen::giveKeyboardTo(Part part) {
  keyboard_ = part;
  list_.setFocused(part == Part::List);
  kinds_.setFocused(part == Part::Kinds);
  map_.setFocused(part == Part::Map);
  changed();
}

void ScanScreen::cycleKeyboard(bool backwards) {
  const bool skipKinds = layout_.kinds.empty();
  const int step = backwards ? 2 : 1;
  int next = static_cast<int>(keyboard_);
  do {
    next = (next + step) % 3;
  } while (skipKinds && static_cast<Part>(next) == Part::Kinds);
  giveKeyboardTo(static_cast<Part>(next));
}

bool ScanScreen::key(const ui::KeyEvent& event) {
  if (ui::key::plain(event.keysym) == ui::key::kTab) {
    cycleKeyboard(event.shift);
    return true;
  }
  // What the kinds and the map have no use for, such as letters, is for the list.
  const bool used = (keyboard_ == Part::Kinds && kinds_.key(event)) ||
                    (keyboard_ == Part::Map && map_.key(event));
  return used || list_.key(event, ui::Window::now());
}

void ScanScreen::tick(std::int64_t nowMs) {
  map_.tick(nowMs, {0, 0, width_, height_});
  if (picture_.due()) changed();
}

bool ScanScreen::dismiss() {
  if (map_.hideCard()) return true;
  const bool highlighted = kinds_.selectedKind().has_value();
  kinds_.clearSelection();
  return highlighted;
}

ui::PointerShape ScanScreen::pointer() const {
  const auto owner = pointers_.owner();
  const bool onDivider = owner == mainDividerTarget_ || owner == kindsDividerTarget_;
  const auto direction = dividers_.at(lastPointer_.x, lastPointer_.y);
  if (!onDivider || !direction) return toolbar_.pointer();
  return *direction == Dividers::Direction::Across ? ui::PointerShape::ResizeHorizontal
                                                   : ui::PointerShape::ResizeVertical;
}

void ScanScreen::activate(NodeId node) {
  if (tree_->isDirectory(node)) {
    focus_.go(node);
  } else if (onOpenFile) {
    onOpenFile(node);
  }
}

NodeId ScanScreen::target() const {
  if (selection_.size() == 1) return *selection_.nodes().begin();
  const auto current = list_.current();
  return current && selection_.contains(*current) ? *current : focus_.current();
}

}  // namespace app
