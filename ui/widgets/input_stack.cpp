#include "ui/widgets/input_stack.h"

#include <algorithm>
#include <utility>

#include "ui/keys.h"

namespace ui {

namespace {

/// Tab and the keys that go to another row or control.
bool isForMoving(key::Keysym keysym) {
  const key::Keysym plain = key::plain(keysym);
  return plain == key::kTab || (plain >= key::kHome && plain <= key::kEnd);
}

}  // namespace

View* InputStack::top() const { return over_.empty() ? screen_ : over_.back().get(); }

void InputStack::changed() {
  damage_.addAll();
  needsFrame();
}

void InputStack::needsFrame() const {
  if (onChanged) onChanged();
}

// What lies over what.

void InputStack::show(View& screen) {
  closeMenu();
  if (screen_ && screen_ != &screen) screen_->releasePointer();
  screen_ = &screen;
  told_ = 0;
  updatePointer();
  changed();
}

void InputStack::open(std::unique_ptr<Overlay> overlay) {
  closeMenu();
  if (View* const below = top()) below->releasePointer();
  Overlay* const opened = overlay.get();
  opened->onChanged = [this] { needsFrame(); };
  opened->onClosed = [this, opened] { close(opened); };
  opened->setRect(window_);
  over_.push_back(std::move(overlay));
  updatePointer();
  changed();
}

void InputStack::close(const Overlay* overlay) {
  const auto found = std::ranges::find(over_, overlay, [](const auto& o) { return o.get(); });
  if (found == over_.end()) return;
  // Out of the stack first: what ends with the overlay may look at the stack.
  const std::unique_ptr<Overlay> closed = std::move(*found);
  over_.erase(found);
  changed();
}

void InputStack::closeMenu() {
  if (!over_.empty() && over_.back()->isMenu()) close(over_.back().get());
}

void InputStack::setSize(int width, int height) {
  closeMenu();
  window_ = {0, 0, width, height};
  for (const auto& overlay : over_) overlay->setRect(window_);
  told_ = 0;  // other things may be under the pointer now
  updatePointer();
}

bool InputStack::prepare() {
  bool costly = screen_ && screen_->prepare();
  for (const auto& overlay : over_) costly = overlay->prepare() || costly;
  if (screen_ && onPointer) onPointer(top()->pointer());
  return costly;
}

void InputStack::collectDamage(Damage* damage) {
  damage->add(std::exchange(damage_, {}));
  if (screen_) screen_->collectDamage(damage);
  for (const auto& overlay : over_) overlay->collectDamage(damage);
}

void InputStack::paint(Canvas& canvas) const {
  canvas.setShowsRings(keyboardUsed_);
  if (screen_) screen_->paint(canvas);
  for (const auto& overlay : over_) overlay->paint(canvas);
}

void InputStack::tick(std::int64_t nowMs) {
  if (screen_) screen_->tick(nowMs);
  if (covered()) top()->tick(nowMs);
}

// The pointer.

void InputStack::press(const MouseEvent& event) {
  useKeyboard(false);
  View* const target = top();
  const std::uint64_t serial = target->serial();
  const bool menu = !over_.empty() && over_.back()->isMenu();
  if (event.clicks == 1) clicksBefore_ = 0;
  MouseEvent counted = event;
  counted.clicks -= clicksBefore_;
  // A quick second press belongs to what took the first one; a menu knows no double presses.
  if (counted.clicks > 1 && !menu && serial != pressed_) return;
  pressed_ = serial;
  target->press(counted);
  if (menu && top()->serial() != serial) clicksBefore_ = event.clicks;
  updatePointer();
}

void InputStack::motion(const MouseEvent& event) {
  pointer_ = event;
  tellPointer();
  updatePointer();
}

void InputStack::release(const MouseEvent& event) {
  top()->release(event);
  updatePointer();
}

void InputStack::leave() {
  pointer_.reset();
  if (screen_) screen_->leave();
  for (const auto& overlay : over_) overlay->leave();
}

void InputStack::wheel(const MouseEvent& event, int dy) {
  top()->wheel(event, dy);
  updatePointer();
}

void InputStack::tellPointer() {
  told_ = top()->serial();
  const MouseEvent event = *pointer_;
  pointer_->moved = false;  // when it is told once more
  top()->motion(event);
}

/// What has the input by now may be news to it, and to the pointer's shape.
void InputStack::updatePointer() {
  if (!screen_) return;
  if (pointer_ && top()->serial() != told_) tellPointer();
  if (onPointer) onPointer(top()->pointer());
}

// The keys.

void InputStack::useKeyboard(bool used) {
  if (std::exchange(keyboardUsed_, used) != used) changed();
}

bool InputStack::key(const KeyEvent& event) {
  if (isForMoving(event.keysym)) useKeyboard(true);
  const bool used = top()->key(event) || covered();
  updatePointer();
  return used;
}

}  // namespace ui
