#pragma once

#include <string>
#include <string_view>

namespace app {

/// The label of the link to a newer version.
inline constexpr char kDownloadLabel[] = "Download it";

/// What the user is told of a newer version, and where it is to be had. The server has a say in
/// both: the message is any bytes of any length, the address one of the web.
struct UpdateNotice {
  std::string message;
  std::string downloadAddress;

  bool operator==(const UpdateNotice&) const = default;
};

/// The message as one line of valid UTF-8 without control characters, cut to a length that views
/// can measure in every frame.
std::string shownMessage(std::string_view message);

}  // namespace app
