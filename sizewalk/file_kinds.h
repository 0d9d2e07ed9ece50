#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sizewalk {

/// File kinds: what the map colours and groups by. A kind is an index into one list of names that
/// never changes; the scanner gives every entry its kind once, from its type and the extension of
/// its name. As wide as the tree's column.
using KindIndex = std::uint16_t;

/// Kinds are the indices below this.
inline constexpr KindIndex kKindCount = 76;

inline constexpr KindIndex kKindUnknown = 0;  // neither file, directory nor symbolic link
inline constexpr KindIndex kKindFolder = 1;
inline constexpr KindIndex kKindSymbolicLink = 2;
inline constexpr KindIndex kKindNoExtension = 3;
/// The fallback: an extension that is not listed, too long, or not plain ASCII.
inline constexpr KindIndex otherKind = kKindCount - 1;
/// Where something may have no kind; outside the list.
inline constexpr KindIndex kNoKind = 0xFFFF;

/// The kind of a regular file called `name` (the last path component, raw bytes), by what follows
/// its last dot, without regard to ASCII case. A dot that begins or ends the name, or stands more
/// than twelve bytes before the end, starts no extension. Any thread: the tables behind it are
/// constants.
KindIndex classifyName(std::string_view name);

/// The name shown for a kind; the empty string for an index outside the list.
std::string_view kindName(KindIndex kind);

/// Number of kinds, 76.
KindIndex kindCount();

}  // namespace sizewalk
