#include "ui/widgets/type_ahead.h"

#include "base/utf8.h"

namespace ui {

namespace {

constexpr std::int64_t kForgottenAfterMs = 1000;

constexpr bool isBetween(char32_t c, char32_t first, char32_t last) {
  return c >= first && c <= last;
}

/// The small letter of a capital one.
constexpr char32_t folded(char32_t c) {
  if (isBetween(c, U'A', U'Z')) return c + 32;
  if (isBetween(c, 0xC0, 0xDE) && c != 0xD7) return c + 32;  // Latin-1 but for the times sign
  if (isBetween(c, 0x391, 0x3A9)) return c + 32;             // Greek
  if (isBetween(c, 0x410, 0x42F)) return c + 32;             // Cyrillic
  if (isBetween(c, 0x400, 0x40F)) return c + 80;             // Cyrillic with marks
  return c;
}

}  // namespace

bool TypeAhead::goesOn(std::int64_t nowMs) const {
  return lastMs_ && nowMs - *lastMs_ < kForgottenAfterMs;
}

bool TypeAhead::accepts(std::string_view text, std::int64_t nowMs) const {
  const auto first = base::firstCharacter(text);
  if (!first || first->codePoint < U' ' || first->codePoint == 0x7F) return false;
  return first->codePoint != U' ' || (goesOn(nowMs) && !typed_.empty());
}

bool TypeAhead::type(std::string_view text, std::int64_t nowMs) {
  if (!goesOn(nowMs)) typed_.clear();
  const bool fresh = typed_.empty();
  typed_ += text;
  lastMs_ = nowMs;
  return fresh;
}

bool TypeAhead::takeBack(std::int64_t nowMs) {
  if (!goesOn(nowMs)) return false;
  while (!typed_.empty() && base::isContinuation(typed_.back())) typed_.pop_back();
  if (!typed_.empty()) typed_.pop_back();
  lastMs_ = nowMs;
  return true;
}

bool TypeAhead::forgetOld(std::int64_t nowMs) {
  if (!lastMs_ || goesOn(nowMs)) return false;
  forget();
  return !typed_.empty();
}

bool TypeAhead::matches(std::string_view name) const {
  std::string_view typed = typed_;
  while (const auto wanted = base::firstCharacter(typed)) {
    const auto found = base::firstCharacter(name);
    if (!found || folded(found->codePoint) != folded(wanted->codePoint)) return false;
    typed.remove_prefix(wanted->length);
    name.remove_prefix(found->length);
  }
  return true;
}

}  // namespace ui
