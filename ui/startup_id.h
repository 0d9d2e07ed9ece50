#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ui {

/// What a launcher calls one start of a program, so that it learns when the program is there
/// (Startup Notification Protocol 0.1, freedesktop.org). Needs no X server.
class StartupId {
 public:
  /// None: nobody waits for an answer.
  StartupId() = default;
  /// None as well when no launcher can have made `bytes`: the protocol's text is UTF-8, and more
  /// than 4096 bytes are not worth hundreds of messages to everybody.
  explicit StartupId(const std::string& bytes);

  /// Takes it out of the environment, where a launcher left it, for this process alone: a program
  /// that this one starts would answer in its place. Before there are other threads.
  static StartupId fromEnvironment();

  bool none() const { return text_.empty(); }
  const std::string& text() const { return text_; }
  /// When the user asked for the program, as the X server's clock tells. Nothing when the launcher
  /// does not say.
  std::optional<std::uint32_t> time() const;

 private:
  std::string text_;
};

/// Twenty bytes of a message to the desktop, as one X event carries them.
using StartupMessagePart = std::array<char, 20>;

/// The message that the start `id` is over. A zero ends it, and more of them fill the last part.
std::vector<StartupMessagePart> startupEndMessage(const StartupId& id);

}  // namespace ui
