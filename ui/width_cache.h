#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace ui {

/// Remembers the widths of the texts that were asked for lately, so that what is drawn in every
/// frame is measured once.
///
/// Two generations: when the young one is full it becomes the old one, and the old one is dropped.
/// A text that is asked for moves to the young one, so what is in use stays and what is not goes
/// without any order being kept.
class WidthCache {
 public:
  static constexpr std::size_t kGeneration = 4096;
  /// Longer texts are not kept.
  static constexpr std::size_t kLongestText = 1024;

  std::optional<int> find(std::string_view text);
  void keep(std::string_view text, int width);

  /// Texts remembered; never more than two generations.
  std::size_t size() const { return young_.size() + old_.size(); }

 private:
  struct Hash {
    using is_transparent = void;  // NOLINT(readability-identifier-naming): the library asks for it
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>{}(text);
    }
  };
  using Widths = std::unordered_map<std::string, int, Hash, std::equal_to<>>;

  Widths young_;
  Widths old_;
};

}  // namespace ui
