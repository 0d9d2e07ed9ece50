#include "app/actions/update_answer.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>

#include "app/actions/web_address.h"
#include "app/model/product.h"
#include "sizewalk/json.h"

namespace app {

namespace {

using sizewalk::JsonValue;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes the part before the next dot off `version`, and returns the digits of its number, which
/// begin with no zero: none for 0.
std::string_view takeNumber(std::string_view* version) {
  const std::size_t dot = version->find('.');
  std::string_view part = version->substr(0, dot);
  version->remove_prefix(dot == std::string_view::npos ? version->size() : dot + 1);
  const auto digitsEnd = std::find_if_not(part.begin(), part.end(), isDigit);
  part = part.substr(0, static_cast<std::size_t>(digitsEnd - part.begin()));
  part.remove_prefix(std::min(part.find_first_not_of('0'), part.size()));
  return part;
}

/// The number that is written in all of `digits`; nothing when they are not digits alone.
std::optional<unsigned> numberIn(std::string_view digits) {
  unsigned number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [read, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || read != end) return std::nullopt;
  return number;
}

/// Noon UTC of the date that a text begins with.
std::optional<std::chrono::sys_seconds> noonOf(std::string_view text) {
  if (text.size() < 10) return std::nullopt;
  const auto year = numberIn(text.substr(0, 4));
  const auto month = numberIn(text.substr(5, 2));
  const auto day = numberIn(text.substr(8, 2));
  if (!year || !month || !day) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                         std::chrono::month(*month), std::chrono::day(*day)};
  if (!date.month().ok() || !date.day().ok()) return std::nullopt;
  // The 30th of February counts as the 2nd of March, or the 1st.
  return std::chrono::sys_days(date) + std::chrono::hours(12);
}

/// "1 year", "2 years".
std::string counted(std::int64_t count, const std::string& unit) {
  return std::to_string(count) + " " + unit + (count == 1 ? "" : "s");
}

/// In the largest unit of which there are enough for the sentence to be roughly true.
std::string ageText(std::int64_t days) {
  if (days >= 365) return counted(days / 365, "year");
  if (days >= 60) return counted(days / 30, "month");
  if (days >= 14) return counted(days / 7, "week");
  return counted(days, "day");
}

}  // namespace

bool isHigherVersion(std::string_view version, std::string_view other) {
  while (!version.empty() || !other.empty()) {
    const std::string_view number = takeNumber(&version);
    const std::string_view otherNumber = takeNumber(&other);
    // Without zeros in front the longer one is the higher one, and of equal lengths the one that
    // sorts later.
    if (number.size() != otherNumber.size()) return number.size() > otherNumber.size();
    if (number != otherNumber) return number > otherNumber;
  }
  return false;
}

std::optional<UpdateAvailable> parseUpdateAnswer(const std::string& answer,
                                                 std::string_view runningVersion) {
  const JsonValue::Pointer root = JsonValue::parse(answer);
  UpdateAvailable update{
      .version = JsonValue::stringMember(JsonValue::member(root, "latest"), "version"),
      .downloads = JsonValue::stringMember(root, "downloads"),
      .currentDate = JsonValue::stringMember(root, "currentDate")};
  if (update.version.empty()) return std::nullopt;
  const bool available = JsonValue::isTrue(JsonValue::member(root, "updateAvailable")) ||
                         isHigherVersion(update.version, runningVersion);
  if (!available) return std::nullopt;
  return update;
}

std::int64_t ageInDays(std::string_view date, std::time_t now) {
  const auto noon = noonOf(date);
  if (!noon) return -1;
  const auto age = std::chrono::seconds(now) - noon->time_since_epoch();
  return std::chrono::duration_cast<std::chrono::days>(age).count();
}

std::string updateMessage(const UpdateAvailable& update, std::time_t now) {
  const std::string message = "Version " + update.version + " is available.";
  const std::int64_t days = ageInDays(update.currentDate, now);
  return days < 1 ? message : message + " Yours is " + ageText(days) + " old.";
}

std::string downloadAddress(const UpdateAvailable& update) {
  return isWebAddress(update.downloads) ? update.downloads : kProductPage;
}

UpdateNotice updateNotice(const UpdateAvailable& update, std::time_t now) {
  return {.message = updateMessage(update, now), .downloadAddress = downloadAddress(update)};
}

}  // namespace app
