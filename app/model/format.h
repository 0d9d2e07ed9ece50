#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace app {

/// Numbers and file names as every view shows them, the same in every locale. Any thread.

/// A size in decimal units with three significant digits, as "512 B", "1.50 kB", "23.4 MB", "512
/// GB"; past 1000 PB the number grows. Rounding comes last, so 9999 bytes are "10.00 kB" and
/// 999,999 are "1000 kB". Sizes below 1000, all negative ones too, are whole bytes.
std::string formatSize(std::int64_t bytes);

/// A size as the views count, cut to what a signed number holds.
std::int64_t signedSize(std::uint64_t bytes);

/// The sum of two sizes, kept within the signed range.
std::int64_t sumOfSizes(std::int64_t a, std::int64_t b);

/// A count with a comma between every three digits, as "1,234,567" or "-1,000".
std::string formatCount(std::int64_t count);

/// A file name, which may be any bytes, as valid UTF-8: every byte that belongs to no valid
/// sequence becomes a backslash and three octal digits, so 0xFF is "\377". A valid name stays as it
/// is.
std::string displayName(std::string_view name);

/// A path in the same way, to be told with a reason that is to be seen as well: of more than 300
/// bytes, "…" and the end.
std::string readablePath(std::string_view path);

}  // namespace app
