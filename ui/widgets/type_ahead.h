#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ui {

/// The beginning of a name as it is typed into a list. Each key lengthens it; after a second
/// without one it is forgotten.
///
/// Names match in any case of the Latin, Greek and Cyrillic letters that have a capital at a fixed
/// distance (ASCII, Latin-1 and the basic alphabets of the others), the same in every locale.
class TypeAhead {
 public:
  /// True when `text`, typed at `nowMs`, belongs to a search: nothing that controls, and no blank
  /// at the beginning.
  bool accepts(std::string_view text, std::int64_t nowMs) const;
  /// Adds what was typed. True when a new search begins with it.
  bool type(std::string_view text, std::int64_t nowMs);
  /// Takes back the last character, of what is typed in UTF-8. False when no search runs; one from
  /// which all was taken back does so as long as any other, so that a key too many does no harm.
  bool takeBack(std::int64_t nowMs);
  void forget() { lastMs_.reset(); }
  /// Forgets what was typed more than a second before `nowMs`. True when something was.
  bool forgetOld(std::int64_t nowMs);

  /// Empty while no search runs.
  std::string_view typed() const { return lastMs_ ? typed_ : std::string_view(); }

  /// True when `name`, which may be any bytes, begins with what was typed.
  bool matches(std::string_view name) const;
  /// The first of `count` names, from the one with the number `start` on and round the end, that
  /// matches. `nameOf(number)` gives a name.
  template <typename NameOf>
  std::optional<std::size_t> find(std::size_t count, std::size_t start, NameOf&& nameOf) const {
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t candidate = (start + i) % count;
      if (matches(nameOf(candidate))) return candidate;
    }
    return std::nullopt;
  }

 private:
  bool goesOn(std::int64_t nowMs) const;

  std::string typed_;
  /// When a key was last typed, unless that was forgotten.
  std::optional<std::int64_t> lastMs_;
};

}  // namespace ui
