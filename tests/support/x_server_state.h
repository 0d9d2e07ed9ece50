#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace test {

/// What clients can leave behind at an X server, as it was before there was any. What belongs to a
/// client goes with it: windows, selections, grabs, pictures.
class XServerState {
 public:
  /// Of the server of that display and process, which has no client.
  XServerState(const std::string& display, pid_t server);

  /// Waits two seconds at most until every client left, and puts pointer, focus and the properties
  /// of the root back. False when a client stays, when a key or button is down or means something
  /// else, or when the server takes no connection.
  bool restore() const;

 private:
  std::size_t openFiles() const;
  bool awaitLastClient() const;

  const std::string display_;
  const pid_t server_;
  /// How many files the server has open when one client is connected.
  std::size_t filesForOneClient_ = 0;
  int pointerX_ = 0;
  int pointerY_ = 0;
  unsigned long focus_ = 0;
  int revertFocusTo_ = 0;
  std::vector<unsigned long> rootProperties_;
  std::vector<unsigned long> keySymbols_;
};

}  // namespace test
