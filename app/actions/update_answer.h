#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "app/model/update_notice.h"

// What the update server says, and what the user is told of it. Any thread.

namespace app {

/// A newer version, in the words of the server: any bytes of any length.
struct UpdateAvailable {
  /// The newer version; not empty.
  std::string version;
  /// Where to get it; see `downloadAddress`.
  std::string downloads;
  /// When the version that runs here was published, as "YYYY-MM-DD", if the server knows.
  std::string currentDate;
};

/// The update that `answer` tells of, a JSON document:
///
///     {"updateAvailable": true, "latest": {"version": "1.2.0"},
///      "downloads": "https://...", "currentDate": "2025-01-31"}
///
/// There is one when the server says so, or when the latest version is higher than
/// `runningVersion`. Nothing without a latest version, and for what is no such document.
std::optional<UpdateAvailable> parseUpdateAnswer(const std::string& answer,
                                                 std::string_view runningVersion);

/// Whether a version is higher than another. Versions are numbers with dots between them, of any
/// size, the first one being the weightiest. A number is the digits that its part begins with; a
/// part without any, or one that the shorter version lacks, is 0.
bool isHigherVersion(std::string_view version, std::string_view other);

/// Whole days from noon UTC of a date to `now`: 0 within a day before or after it, below 0 before.
/// The date is what `date` begins with, four digits of the year, any byte, two digits of the month,
/// any byte, and two of the day; -1 when there is none such.
std::int64_t ageInDays(std::string_view date, std::time_t now);

/// The sentences that tell of an update: "Version 1.2.0 is available. Yours is 3 weeks old.",
/// without the second one when the age is unknown or below a day. The version is any bytes.
std::string updateMessage(const UpdateAvailable& update, std::time_t now);

/// Where "Download it" leads: to the address that the server gave if it is one of the web,
/// otherwise to the product's page.
std::string downloadAddress(const UpdateAvailable& update);

/// Both, for the views.
UpdateNotice updateNotice(const UpdateAvailable& update, std::time_t now);

}  // namespace app
