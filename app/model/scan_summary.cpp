#include "app/model/scan_summary.h"

#include <cerrno>
#include <system_error>

#include "sizewalk/scan_options.h"

namespace app {

namespace {
double seconds(std::uint64_t nanoseconds) { return static_cast<double>(nanoseconds) * 1e-9; }

/// What the C library says of these two is not about a scan. The text for want of memory is so
/// short that a string holds it without asking for any.
std::string textOf(int error) {
  if (error == ENOMEM) return "Out of memory";
  if (error == EAGAIN) return "No more threads can be started";
  return std::generic_category().message(error);
}
}  // namespace

ScanSummary summaryOf(const sizewalk::TreeScanner& scanner) {
  const sizewalk::ScanTotals totals = scanner.tree().totals();
  const sizewalk::WalkStatistics statistics = scanner.statistics();
  ScanSummary summary;
  summary.files = totals.files;
  summary.folders = totals.directories;
  summary.errors = totals.errors;
  summary.hardLinks = totals.hardLinks;
  summary.hardLinkBytes = totals.hardLinkBytes;
  summary.systemCalls = totals.systemCalls;
  summary.cancelled = scanner.cancelRequested();
  summary.lastScanTime = scanner.options().hasLastScan ? scanner.options().lastScanTime : 0;
  summary.datedEntries = totals.datedEntries;
  summary.queueWaits = statistics.queueWaits;
  summary.queueCounter = statistics.emptyQueueWaits;
  summary.pathSeconds = seconds(statistics.pathNs);
  summary.openSeconds = seconds(statistics.openNs);
  summary.listSeconds = seconds(statistics.listNs);
  summary.handOverSeconds = seconds(statistics.handOverNs);
  summary.waitSeconds = seconds(statistics.idleNs);
  summary.integratorBusySeconds = seconds(statistics.integratorBusyNs);
  summary.integratorElapsedSeconds = seconds(statistics.integratorElapsedNs);
  summary.method = static_cast<std::uint32_t>(sizewalk::ListingStrategy::Enumerate);
  return summary;
}

ScanSummary summaryOfBreak(const sizewalk::TreeScanner& scanner, int error) {
  ScanSummary summary = summaryOf(scanner);
  summary.cancelled = true;
  summary.failure = static_cast<std::uint32_t>(error);
  summary.failureText = textOf(error);
  return summary;
}

ScanSummary summaryOfFailure(int error) {
  ScanSummary summary;
  summary.failure = static_cast<std::uint32_t>(error);
  summary.failureText = textOf(error);
  return summary;
}

}  // namespace app
