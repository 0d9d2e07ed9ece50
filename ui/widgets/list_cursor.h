#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ui/input.h"
#include "ui/keys.h"
#include "ui/widgets/row_geometry.h"
#include "ui/widgets/type_ahead.h"

namespace ui {

/// Where the keyboard is in a list: the current row, the row where a range begins, and what was
/// typed to search for a name. Rows are held by key, so that they may come, go and change places
/// meanwhile: `keyAt(row)` gives a row's, and `find(key)` the row, nothing where it has none.
/// Needs no window.
template <typename Key>
class ListCursor {
 public:
  /// What a key did in the search for a name.
  struct Search {
    /// It belongs to the search.
    bool taken = false;
    /// The row that it leads to; nothing when no name begins with what was typed.
    std::optional<std::size_t> row;
  };

  const std::optional<Key>& current() const { return current_; }
  void setCurrent(std::optional<Key> key) { current_ = key; }
  /// Ranges begin at that row.
  void setAnchor(std::optional<Key> key) { anchor_ = key; }
  /// Begins anew with that current row: no range has begun and nothing was typed.
  void reset(std::optional<Key> current = std::nullopt);

  /// The rows of a range that ends with `row`. It begins at the anchor, which stays; where that has
  /// no row the current one becomes the anchor.
  template <typename Find>
  RowRange rangeTo(std::size_t row, Find find);

  /// Before rows vanish: when the current one, which is `row` of `count`, is among them, makes the
  /// nearest one current for which `remains(key)`; of two equally near ones that below, which moves
  /// up into its place. Without any there is no current one.
  template <typename KeyAt, typename Remains>
  void handOn(std::size_t row, std::size_t count, KeyAt keyAt, Remains remains);

  /// Adds what a key types to the search and looks for the next of `count` names that begins so,
  /// from the current row, which is `row`, on and round the end. The first letter leaves that row,
  /// those that follow may stay. The current row stays the same one. Backspace takes a letter back.
  template <typename NameAt>
  Search type(const KeyEvent& event, std::size_t count, std::optional<std::size_t> row,
              NameAt nameAt);
  void forgetTyped() { typeAhead_.forget(); }
  /// As time goes by. True when something was forgotten.
  bool forgetOldTyped(std::int64_t nowMs) { return typeAhead_.forgetOld(nowMs); }
  /// What was typed to search for a name, as long as the search runs.
  std::string_view typed() const { return typeAhead_.typed(); }

 private:
  std::optional<Key> current_;
  std::optional<Key> anchor_;
  TypeAhead typeAhead_;
};

template <typename Key>
void ListCursor<Key>::reset(std::optional<Key> current) {
  current_ = current;
  anchor_.reset();
  typeAhead_.forget();
}

template <typename Key>
template <typename Find>
RowRange ListCursor<Key>::rangeTo(std::size_t row, Find find) {
  std::optional<std::size_t> from = anchor_ ? find(*anchor_) : std::nullopt;
  if (!from) {
    anchor_ = current_;
    from = current_ ? find(*current_) : std::nullopt;
  }
  const auto [first, last] = std::minmax({row, from.value_or(row)});
  return {first, last + 1};
}

template <typename Key>
template <typename KeyAt, typename Remains>
void ListCursor<Key>::handOn(std::size_t row, std::size_t count, KeyAt keyAt, Remains remains) {
  const auto take = [&](std::size_t candidate) {
    const Key key = keyAt(candidate);
    if (!remains(key)) return false;
    current_ = key;
    return true;
  };
  for (std::size_t distance = 0; distance < count; ++distance) {
    if (row + distance < count && take(row + distance)) return;
    if (distance <= row && take(row - distance)) return;
  }
  current_.reset();
}

template <typename Key>
template <typename NameAt>
auto ListCursor<Key>::type(const KeyEvent& event, std::size_t count, std::optional<std::size_t> row,
                           NameAt nameAt) -> Search {
  if (event.keysym == key::kBackSpace && !event.ctrl) {
    return {typeAhead_.takeBack(event.timeMs), std::nullopt};
  }
  if (event.ctrl || !typeAhead_.accepts(event.typed, event.timeMs)) return {};
  const bool fresh = typeAhead_.type(event.typed, event.timeMs);
  const std::size_t start = row ? *row + (fresh ? 1 : 0) : 0;
  return {true, typeAhead_.find(count, start, nameAt)};
}

}  // namespace ui
