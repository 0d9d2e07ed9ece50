#include "ui/text_fit.h"

#include <cstddef>

#include "base/utf8.h"
#include "ui/text.h"

namespace ui {

namespace {

/// Length of the longest beginning of `text` that ends between two characters and is no wider than
/// `available`. By bisection: about ten measurements of a file name, all of which repeat from frame
/// to frame.
std::size_t longestBeginning(std::string_view text, int available, const MeasureText& measure) {
  std::size_t low = 0;
  std::size_t high = text.size();
  while (high > low) {
    std::size_t middle = base::characterStart(text, low + (high + 1 - low) / 2);
    // The first character between takes up more than half.
    if (middle == low) middle += base::firstCharacter(text.substr(low))->length;
    if (measure(text.substr(0, middle)) > available) {
      high = base::characterStart(text, middle - 1);
    } else {
      low = middle;
    }
  }
  return low;
}

/// Where the longest end of `text` begins that is no wider than `available`.
std::size_t longestEnd(std::string_view text, int available, const MeasureText& measure) {
  std::size_t low = 0;
  std::size_t high = text.size();
  while (low < high) {
    const std::size_t middle = base::characterStart(text, low + (high - low) / 2);
    if (measure(text.substr(middle)) <= available) {
      high = middle;
    } else {
      low = middle + base::firstCharacter(text.substr(middle))->length;
    }
  }
  return high;
}

/// What is left of `width` beside "…".
int besideEllipsis(int width, const MeasureText& measure) { return width - measure(kEllipsis); }

}  // namespace

std::string shortenedAtEnd(std::string_view text, int width, const MeasureText& measure) {
  std::string valid = base::withReplacements(text);
  if (measure(valid) <= width) return valid;
  const int available = besideEllipsis(width, measure);
  if (available < 1) return {};
  valid.resize(longestBeginning(valid, available, measure));
  return valid.append(kEllipsis);
}

std::string shortenedAtStart(std::string_view text, int width, const MeasureText& measure) {
  std::string valid = base::withReplacements(text);
  if (measure(valid) <= width) return valid;
  const int available = besideEllipsis(width, measure);
  if (available < 1) return {};
  return std::string(kEllipsis).append(valid, longestEnd(valid, available, measure));
}

}  // namespace ui
