#include "app/format.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace app {

namespace {

constexpr std::array<std::string_view, 6> kUnits = {"B", "kB", "MB", "GB", "TB", "PB"};

// to_chars and not printf: it rounds alike but never takes the decimal comma of a locale.
std::string fixed(double value, int decimals) {
  std::array<char, 64> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, decimals);
  return {buffer.data(), result.ptr};
}

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// How the lead byte of a UTF-8 sequence of `length` bytes is marked, and the least value it may
/// hold.
struct SequenceForm {
  unsigned leadMask;
  unsigned leadBits;
  std::size_t length;
  char32_t least;
};
constexpr SequenceForm kSequenceForms[] = {
    {0x80, 0x00, 1, 0x0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

bool isValidSequence(std::string_view bytes, const SequenceForm& form) {
  char32_t value = static_cast<unsigned char>(bytes[0]) & ~form.leadMask;
  for (const char c : bytes.substr(1)) {
    if (!isContinuation(c)) return false;
    value = value << 6 | (static_cast<unsigned char>(c) & 0x3F);
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  return value >= form.least && value <= 0x10FFFF && !surrogate;
}

/// Bytes in the valid UTF-8 sequence that `text`, which is not empty, begins with; 0 when there is
/// none.
std::size_t sequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  for (const SequenceForm& form : kSequenceForms) {
    if ((lead & form.leadMask) != form.leadBits) continue;
    const bool valid =
        text.size() >= form.length && isValidSequence(text.substr(0, form.length), form);
    return valid ? form.length : 0;
  }
  return 0;
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
    const std::size_t length = sequenceLength(name);
    if (length == 0) {
      appendOctal(text, name[0]);
      name.remove_prefix(1);
    } else {
      text.append(name.substr(0, length));
      name.remove_prefix(length);
    }
  }
  return text;
}

}  // namespace app
