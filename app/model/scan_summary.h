#pragma once

#include <cstdint>
#include <string>

#include "sizewalk/tree_scanner.h"

namespace app {

/// What is known of a scan when it has ended. Times are seconds.
struct ScanSummary {
  std::uint64_t files = 0;    // items in the tree
  std::uint64_t folders = 0;  // subdirectories handed to the walk
  /// Entries and directories that could not be examined or read.
  std::uint64_t errors = 0;
  /// Hard-link duplicates, and the allocated bytes they would take if each counted for itself.
  std::uint64_t hardLinks = 0;
  std::uint64_t hardLinkBytes = 0;
  /// From the start of the background thread's work to this summary.
  double elapsedSeconds = 0;
  std::uint64_t systemCalls = 0;
  bool cancelled = false;
  /// When the folder was scanned to the end before, seconds since the epoch; 0 when that is not
  /// known.
  std::uint32_t lastScanTime = 0;
  /// Entries with a known birth time.
  std::uint64_t datedEntries = 0;
  /// Times a reader waited for room in the result queue, and the integrator for a result.
  std::uint64_t queueWaits = 0;
  std::uint64_t queueCounter = 0;
  // Spent by all readers together, then by the integrator.
  double pathSeconds = 0;
  double openSeconds = 0;
  double listSeconds = 0;
  double handOverSeconds = 0;
  double waitSeconds = 0;
  double integratorBusySeconds = 0;
  double integratorElapsedSeconds = 0;
  /// The listing strategy that was used, a `sizewalk::ListingStrategy`.
  std::uint32_t method = 0;
  /// The errno for which the folder could not be scanned, or only in part; otherwise 0.
  std::uint32_t failure = 0;
  /// What `failure` means, for the user.
  std::string failureText;
};

/// Of a scan that has read what it could, but for `elapsedSeconds`. Call it when no walk runs.
ScanSummary summaryOf(const sizewalk::TreeScanner& scanner);

/// Of a scan that `error`, an errno, broke off in the middle: that of a stopped one, with the
/// failure. Call it when no walk runs.
ScanSummary summaryOfBreak(const sizewalk::TreeScanner& scanner, int error);

/// Of a scan that was not made for `error`, an errno.
ScanSummary summaryOfFailure(int error);

}  // namespace app
