#include "app/model/format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <optional>

#include "base/utf8.h"
#include "ui/text.h"

namespace app {

namespace {

constexpr std::size_t kLongestPathTold = 300;

constexpr std::array<std::string_view, 6> kUnits = {"B", "kB", "MB", "GB", "TB", "PB"};

// to_chars and not printf: it rounds alike but never takes the decimal comma of a locale.
std::string fixed(double value, int decimals) {
  std::array<char, 64> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, decimals);
  return {buffer.data(), result.ptr};
}

void appendOctal(std::string& text, char c) {
  const auto byte = static_cast<unsigned char>(c);
  text += '\\';
  for (const int shift : {6, 3, 0}) text += static_cast<char>('0' + (byte >> shift & 7));
}

}  // namespace

std::string formatSize(std::int64_t bytes) {
  double value = static_cast<double>(bytes);
  if (value < 1000) return std::to_string(bytes) + " B";
  std::size_t unit = 0;
  while (value >= 1000 && unit + 1 < kUnits.size()) {
    value /= 1000;
    ++unit;
  }
  const int decimals = value < 10 ? 2 : value < 100 ? 1 : 0;
  return fixed(value, decimals).append(1, ' ').append(kUnits[unit]);
}

std::int64_t signedSize(std::uint64_t bytes) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(std::min(bytes, kMost));
}

std::int64_t sumOfSizes(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  using Limits = std::numeric_limits<std::int64_t>;
  return b > 0 ? Limits::max() : Limits::min();
}

std::string formatCount(std::int64_t count) {
  // Negated as unsigned: the least count has no positive counterpart.
  const auto bits = static_cast<std::uint64_t>(count);
  const std::string digits = std::to_string(count < 0 ? 0 - bits : bits);
  std::string text = count < 0 ? "-" : "";
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const std::size_t left = digits.size() - i;
    if (i > 0 && left % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

std::string displayName(std::string_view name) {
  std::string text;
  text.reserve(name.size());
  while (!name.empty()) {
    const std::optional<base::Utf8Character> character = base::firstCharacter(name);
    const std::size_t length = character ? character->length : 1;
    if (character) {
      text.append(name.substr(0, length));
    } else {
      appendOctal(text, name[0]);
    }
    name.remove_prefix(length);
  }
  return text;
}

std::string readablePath(std::string_view path) {
  std::string shown = displayName(path);
  if (shown.size() <= kLongestPathTold) return shown;
  const std::size_t cut = shown.size() - kLongestPathTold;
  return std::string(ui::kEllipsis) + shown.substr(base::characterStart(shown, cut));
}

}  // namespace app
