#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "base/files.h"

namespace app {

/// The path as a record holds it: ASCII letters, digits and "-./_~" as they are, every other byte
/// as
/// '%' and two upper-case hexadecimal digits.
std::string percentEncoded(std::string_view path);

/// The text of a record: where an item lay, absolute or relative to the top directory of a volume,
/// and when it was deleted, in local time (freedesktop.org Trash specification 1.0).
std::string recordText(std::string_view recordedPath, std::time_t deletedAt);

/// One record of a trash: the file "NAME.trashinfo" in its info directory. Takes no lock.
class TrashRecord {
 public:
  /// For the item `itemName` of the trash's files directory. `infoDirectory` is an open directory,
  /// which the caller keeps open for as long as this lives.
  TrashRecord(int infoDirectory, const std::string& itemName);

  /// Makes `text` the whole record, with mode 0600 when it is new. On failure returns false, and
  /// the record is what it was before.
  bool write(std::string text);

  /// Makes the record what it was before the `write` that succeeded: gone, or what it held. What
  /// another process has written into it since then stays.
  void takeBack();

 private:
  std::optional<std::string> content() const;
  base::WriteOutcome replace(std::string_view text) const;
  void restore() const;

  int infoDirectory_;
  std::string fileName_;
  std::string written_;
  std::optional<std::string> before_;  // nothing: there was no record
};

}  // namespace app
