#include "sizewalk/tree_totals.h"

#include <cstddef>

namespace sizewalk {

namespace {

constexpr std::array kScanFields = {&ScanTotals::files,         &ScanTotals::directories,
                                    &ScanTotals::datedEntries,  &ScanTotals::hardLinks,
                                    &ScanTotals::hardLinkBytes, &ScanTotals::errors,
                                    &ScanTotals::systemCalls};

constexpr std::array kKindFields = {
    &KindTotals::allocatedSize,  &KindTotals::apparentSize,       &KindTotals::count,
    &KindTotals::addedLastMonth, &KindTotals::addedLastSixMonths, &KindTotals::addedSinceLastScan};

template <typename Totals, typename Fields>
Totals loadAll(Totals& shared, const Fields& fields) {
  Totals copy;
  for (const auto field : fields) {
    copy.*field = std::atomic_ref(shared.*field).load(std::memory_order_relaxed);
  }
  return copy;
}

}  // namespace

void NodeSums::add(const NodeSums& other) {
  apparentSize += other.apparentSize;
  allocatedSize += other.allocatedSize;
  itemCount += other.itemCount;
  addedLastMonth += other.addedLastMonth;
  addedLastSixMonths += other.addedLastSixMonths;
  addedSinceLastScan += other.addedSinceLastScan;
}

NodeSums NodeSums::negated() const {
  return {0 - apparentSize,   0 - allocatedSize,      0 - itemCount,
          0 - addedLastMonth, 0 - addedLastSixMonths, 0 - addedSinceLastScan};
}

void Tally::addToKind(KindIndex kind, const NodeSums& sums) {
  KindTotals& totals = kinds[kind];
  totals.allocatedSize += sums.allocatedSize;
  totals.apparentSize += sums.apparentSize;
  totals.count += 1;
  totals.addedLastMonth += sums.addedLastMonth;
  totals.addedLastSixMonths += sums.addedLastSixMonths;
  totals.addedSinceLastScan += sums.addedSinceLastScan;
}

void SharedTotals::apply(const Tally& tally, Sign sign) {
  const auto signedValue = [sign](std::uint64_t v) { return sign == Sign::Plus ? v : 0 - v; };
  for (const auto field : kScanFields) addTo(scan_.*field, signedValue(tally.scan.*field));
  for (std::size_t kind = 0; kind < kinds_.size(); ++kind) {
    const KindTotals& amount = tally.kinds[kind];
    if (amount == KindTotals{}) continue;
    for (const auto field : kKindFields) addTo(kinds_[kind].*field, signedValue(amount.*field));
  }
}

ScanTotals SharedTotals::scan() const { return loadAll(scan_, kScanFields); }

KindTotals SharedTotals::kind(KindIndex kind) const {
  if (kind >= kKindCount) return {};
  return loadAll(kinds_[kind], kKindFields);
}

}  // namespace sizewalk
