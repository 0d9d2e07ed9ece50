#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "sizewalk/file_kinds.h"
#include "sizewalk/node.h"

namespace sizewalk {

/// One entry of a listed directory, as a reader found it.
struct EntryRecord {
  /// Where the name starts in the result's `names`, and its length in bytes.
  std::uint32_t nameOffset = 0;
  std::uint16_t nameLength = 0;
  KindIndex kind = 0;
  NodeFlags flags;
  /// 1 for everything but a directory, which is 0.
  std::uint32_t itemCount = 0;
  /// Bytes by length, and bytes allocated (blocks of 512).
  std::uint64_t apparentSize = 0;
  std::uint64_t allocatedSize = 0;
  /// 0, or the key that names the file's (device, inode).
  std::uint64_t hardLinkKey = 0;
  /// Seconds since the epoch, 0 when unknown.
  std::uint32_t birthTime = 0;
};

/// All that one directory read yields. Owned by one reader while it is filled, by the result queue
/// while it waits, by the integrator while it goes into the tree; then reused, so the arrays keep
/// their capacity.
struct DirectoryResult {
  /// The directory that was read.
  NodeId directory = 0;
  /// In listing order.
  std::vector<EntryRecord> entries;
  /// The entries' names back to back, without terminators.
  std::vector<char> names;
  /// Positions in `entries` of the subdirectories to be walked.
  std::vector<std::uint32_t> subdirectories;
  /// Entries whose status failed, and one more when the directory could not be opened or its
  /// listing broke off.
  std::uint64_t errors = 0;
  /// Status and listing calls issued.
  std::uint64_t systemCalls = 0;
  /// The directory itself could not be opened.
  bool unreadable = false;

  std::string_view nameOf(const EntryRecord& entry) const {
    return {names.data() + entry.nameOffset, entry.nameLength};
  }

  /// Appends an entry called `name`; the record's own name fields are set here.
  void addEntry(std::string_view name, EntryRecord entry) {
    entry.nameOffset = static_cast<std::uint32_t>(names.size());
    entry.nameLength = static_cast<std::uint16_t>(name.size());
    names.insert(names.end(), name.begin(), name.end());
    entries.push_back(entry);
  }

  /// Empties the result for the next directory; the arrays keep their memory.
  void reset(NodeId next) {
    directory = next;
    entries.clear();
    names.clear();
    subdirectories.clear();
    errors = 0;
    systemCalls = 0;
    unreadable = false;
  }
};

}  // namespace sizewalk
