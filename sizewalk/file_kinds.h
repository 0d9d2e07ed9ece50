#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sizewalk {

/// File kinds: what the map colours and groups by. A kind is an index into one list of names that
/// never changes; the scanner gives every entry its kind once, from its type and the extension of
/// its name.

inline constexpr int kKindCount = 76;

inline constexpr std::uint16_t kKindUnknown = 0;  // neither file, directory nor symbolic link
inline constexpr std::uint16_t kKindFolder = 1;
inline constexpr std::uint16_t kKindSymbolicLink = 2;
inline constexpr std::uint16_t kKindNoExtension = 3;
/// The fallback: an extension that is not listed, too long, or not plain ASCII.
inline constexpr std::uint16_t otherKind = kKindCount - 1;

/// The kind of a regular file called `name` (the last path component, raw bytes), by what follows
/// its last dot, without regard to ASCII case. A dot that begins or ends the name, or stands more
/// than twelve bytes before the end, starts no extension. Any thread: the tables behind it are
/// constants.
std::uint16_t classifyName(std::string_view name);

/// The name shown for a kind; the empty string for an index outside the list.
std::string_view kindName(int kind);

/// Number of kinds, 76.
int kindCount();

}  // namespace sizewalk
