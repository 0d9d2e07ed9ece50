#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace app {

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
  void forget() { typed_.clear(); }

  /// True when `name`, which may be any bytes, begins with what was typed.
  bool matches(std::string_view name) const;

 private:
  bool goesOn(std::int64_t nowMs) const;

  std::string typed_;
  std::int64_t lastMs_ = 0;
};

}  // namespace app
