#include "ui/widgets/view_group.h"

#include <algorithm>
#include <utility>

#include "ui/keys.h"

namespace ui {

namespace {
constexpr MouseEvent kBesideEverything = {.x = -1, .y = -1, .button = 1};
}  // namespace

void ViewGroup::add(View& view) {
  views_.push_back(&view);
  view.onChanged = [this] { needsFrame(); };
}

bool ViewGroup::bringUpToDate() {
  bool costly = false;
  for (View* view : views_) costly = view->prepare() || costly;
  return costly;
}

void ViewGroup::collectDamage(Damage* damage) {
  View::collectDamage(damage);
  for (View* view : views_) view->collectDamage(damage);
}

void ViewGroup::paint(Canvas& canvas) const {
  for (const View* view : views_) {
    if (!intersect(view->rect(), canvas.clip()).empty()) view->paint(canvas);
  }
  for (const View* view : views_) view->paintOver(canvas);
}

// The pointer.

View* ViewGroup::viewAt(int x, int y) const {
  const auto found =
      std::ranges::find_if(views_, [&](const View* view) { return view->rect().contains(x, y); });
  return found == views_.end() ? nullptr : *found;
}

void ViewGroup::enter(View* view) {
  if (view == entered_) return;
  View* const left = std::exchange(entered_, view);
  if (left) left->leave();
}

void ViewGroup::press(const MouseEvent& event) {
  // A button that goes down twice has come up where nobody told: another client had the pointer.
  if (buttonsDown_.contains(event.button)) releasePointer();
  if (!held_) {
    held_ = viewAt(event.x, event.y);
    buttonsDown_.clear();
    enter(held_);
  }
  buttonsDown_.insert(event.button);
  View* const pressed = held_;
  if (!pressed) return;
  pressed->press(event);
  if (pressed->takesKeyboard()) giveKeyboardTo(pressed);
}

void ViewGroup::motion(const MouseEvent& event) {
  if (!held_) enter(viewAt(event.x, event.y));
  if (View* const view = pointerOwner()) view->motion(event);
  for (View* view : views_) view->pointerSeen(event.x, event.y);
}

void ViewGroup::release(const MouseEvent& event) {
  View* const view = held_;
  buttonsDown_.erase(event.button);
  if (buttonsDown_.empty()) held_ = nullptr;
  if (view) view->release(event);
  if (!held_) enter(viewAt(event.x, event.y));
}

void ViewGroup::leave() {
  if (!held_) enter(nullptr);
}

void ViewGroup::wheel(const MouseEvent& event, int dy) {
  if (View* const view = viewAt(event.x, event.y)) view->wheel(event, dy);
}

void ViewGroup::releasePointer() {
  View* const held = std::exchange(held_, nullptr);
  buttonsDown_.clear();
  // First, so that what would act by being let go anywhere knows that this is no hand's doing.
  for (View* view : views_) view->pointerLost();
  if (held) held->release(kBesideEverything);
  enter(nullptr);
}

PointerShape ViewGroup::pointer() const {
  const View* const view = pointerOwner();
  return view ? view->pointer() : PointerShape::Arrow;
}

// The keyboard.

void ViewGroup::giveKeyboardTo(View* view) {
  if (keyboard_ == view) return;
  if (keyboard_) keyboard_->setFocused(false);
  keyboard_ = view;
  if (keyboard_) keyboard_->setFocused(true);
}

bool ViewGroup::key(const KeyEvent& event) {
  if (keyboard_ && keyboard_->key(event)) return true;
  return key::plain(event.keysym) == key::kTab && cycleKeyboard(event.shift);
}

bool ViewGroup::cycleKeyboard(bool backwards) {
  std::vector<View*> stops;
  std::ranges::copy_if(views_, std::back_inserter(stops), [](const View* view) {
    return view->takesKeyboard() && !view->rect().empty();
  });
  if (stops.empty()) return false;
  const auto found = std::ranges::find(stops, keyboard_);
  const std::size_t count = stops.size();
  // Before the first and behind the last where none has the keyboard.
  const std::size_t from = found != stops.end() ? static_cast<std::size_t>(found - stops.begin())
                           : backwards          ? 0
                                                : count - 1;
  giveKeyboardTo(stops[(from + (backwards ? count - 1 : 1)) % count]);
  return true;
}

void ViewGroup::tick(std::int64_t nowMs) {
  for (View* view : views_) view->tick(nowMs);
}

}  // namespace ui
