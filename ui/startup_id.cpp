#include "ui/startup_id.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "base/utf8.h"

namespace ui {

namespace {

constexpr const char* kVariable = "DESKTOP_STARTUP_ID";
/// The same for Wayland, where it lets a program come to the front: nothing for our children.
constexpr const char* kWaylandVariable = "XDG_ACTIVATION_TOKEN";
constexpr std::size_t kLongest = 4096;

/// As a value of a message, in which blanks separate.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char byte : text) {
    if (byte == '"' || byte == '\\') result += '\\';
    result += byte;
  }
  return result + '"';
}

}  // namespace

StartupId::StartupId(const std::string& bytes) {
  if (bytes.size() <= kLongest && base::withReplacements(bytes) == bytes) text_ = bytes;
}

StartupId StartupId::fromEnvironment() {
  const char* value = std::getenv(kVariable);
  StartupId id{value ? std::string(value) : std::string()};
  unsetenv(kVariable);
  unsetenv(kWaylandVariable);
  return id;
}

std::optional<std::uint32_t> StartupId::time() const {
  constexpr std::string_view kMark = "_TIME";
  const std::size_t mark = text_.rfind(kMark);
  if (mark == std::string::npos) return std::nullopt;
  std::uint32_t time = 0;
  const char* const end = text_.data() + text_.size();
  const auto [rest, problem] = std::from_chars(text_.data() + mark + kMark.size(), end, time);
  // 0 is no time of a server, but asks window managers to keep the focus from a window.
  if (problem != std::errc() || rest != end || time == 0) return std::nullopt;
  return time;
}

std::vector<StartupMessagePart> startupEndMessage(const StartupId& id) {
  const std::string text = "remove: ID=" + quoted(id.text());
  constexpr std::size_t kPart = std::tuple_size_v<StartupMessagePart>;
  std::vector<StartupMessagePart> parts(text.size() / kPart + 1);
  for (std::size_t at = 0; at < text.size(); at += kPart) {
    std::ranges::copy(std::string_view(text).substr(at, kPart), parts[at / kPart].begin());
  }
  return parts;
}

}  // namespace ui
