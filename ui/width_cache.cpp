#include "ui/width_cache.h"

#include <utility>

namespace ui {

std::optional<int> WidthCache::find(std::string_view text) {
  if (const auto known = young_.find(text); known != young_.end()) return known->second;
  const auto known = old_.find(text);
  if (known == old_.end()) return std::nullopt;
  const int width = known->second;
  old_.erase(known);
  keep(text, width);
  return width;
}

void WidthCache::keep(std::string_view text, int width) {
  if (text.size() > kLongestText) return;
  if (young_.size() == kGeneration) {
    old_ = std::move(young_);
    young_.clear();
  }
  young_.emplace(text, width);
}

}  // namespace ui
