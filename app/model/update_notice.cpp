#include "app/model/update_notice.h"

#include <algorithm>
#include <string_view>

#include "base/utf8.h"

namespace app {

namespace {

// Bytes. More than any view has room for, and few enough to measure.
constexpr std::size_t kMostMessage = 600;

/// White space and control characters, of which no more than a gap is to be seen.
bool isGap(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= ' ' || byte == 0x7F;
}

}  // namespace

std::string shownMessage(std::string_view message) {
  const auto* const start = std::ranges::find_if_not(message, isGap);
  message.remove_prefix(static_cast<std::size_t>(start - message.begin()));
  const std::string valid = base::withReplacements(message.substr(0, kMostMessage));
  std::string shown;
  for (const char c : valid.substr(0, base::characterStart(valid, kMostMessage))) {
    if (!isGap(c)) {
      shown += c;
    } else if (!shown.ends_with(' ')) {
      shown += ' ';
    }
  }
  if (shown.ends_with(' ')) shown.pop_back();
  if (message.size() > kMostMessage) shown += "…";
  return shown;
}

}  // namespace app
