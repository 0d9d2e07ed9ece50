#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "sizewalk/file_kinds.h"

namespace sizewalk {

/// What the entries of one file kind add up to. Directories are not counted into kinds.
struct KindTotals {
  std::uint64_t allocatedSize = 0;
  std::uint64_t apparentSize = 0;
  /// Directory entries, so a hard-link duplicate counts here although its sizes are 0.
  std::uint64_t count = 0;
  std::uint64_t addedLastMonth = 0;
  std::uint64_t addedLastSixMonths = 0;
  std::uint64_t addedSinceLastScan = 0;
  friend bool operator==(const KindTotals&, const KindTotals&) = default;
};

/// What the visible part of a tree, or of one subtree, adds up to beside its sizes.
struct ScanTotals {
  /// Sum of the entries' item counts.
  std::uint64_t files = 0;
  /// Subdirectories handed to the walk; mount points are not among them.
  std::uint64_t directories = 0;
  /// Entries with a known birth time.
  std::uint64_t datedEntries = 0;
  std::uint64_t hardLinks = 0;
  /// Allocated bytes of the duplicates, as they would be if each counted for itself.
  std::uint64_t hardLinkBytes = 0;
  /// Entries that could not be examined, directories that could not be opened or listed to the end.
  std::uint64_t errors = 0;
  /// Status and listing calls issued by the readers. Only grows.
  std::uint64_t systemCalls = 0;
  friend bool operator==(const ScanTotals&, const ScanTotals&) = default;
};

/// The six values that a node has and that roll up. Unsigned with wrap-around, so that the same
/// code adds and subtracts.
struct NodeSums {
  std::uint64_t apparentSize = 0;
  std::uint64_t allocatedSize = 0;
  std::uint32_t itemCount = 0;
  std::uint64_t addedLastMonth = 0;
  std::uint64_t addedLastSixMonths = 0;
  std::uint64_t addedSinceLastScan = 0;

  void add(const NodeSums& other);
  NodeSums negated() const;
  friend bool operator==(const NodeSums&, const NodeSums&) = default;
};

/// Every total that a set of nodes accounts for.
struct Tally {
  ScanTotals scan;
  std::array<KindTotals, kKindCount> kinds{};

  /// Adds an entry of a kind that is counted, not a directory.
  void addToKind(KindIndex kind, const NodeSums& sums);
};

/// The totals of a tree: one thread at a time changes them, any thread reads them, value by value
/// and never torn, through relaxed atomics.
class SharedTotals {
 public:
  void add(const Tally& tally) { apply(tally, Sign::Plus); }
  void subtract(const Tally& tally) { apply(tally, Sign::Minus); }
  void addSystemCalls(std::uint64_t calls) { addTo(scan_.systemCalls, calls); }

  ScanTotals scan() const;
  /// All zero for a kind outside the list.
  KindTotals kind(KindIndex kind) const;

 private:
  enum class Sign { Plus, Minus };

  void apply(const Tally& tally, Sign sign);
  /// With one writer a load and a store suffice. Wraps.
  static void addTo(std::uint64_t& value, std::uint64_t amount) {
    const std::atomic_ref<std::uint64_t> shared(value);
    shared.store(shared.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
  }

  // Mutable, since an atomic_ref, even one that only loads, wants an object that may change.
  mutable ScanTotals scan_;
  mutable std::array<KindTotals, kKindCount> kinds_{};
};

}  // namespace sizewalk
