#include "app/scan_controller.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "sizewalk/directory_reader.h"
#include "sizewalk/scan_history.h"

namespace app {

namespace {

using Clock = std::chrono::steady_clock;
using sizewalk::ListingStrategy;
using sizewalk::TreeScanner;

double seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

double seconds(std::uint64_t nanoseconds) { return static_cast<double>(nanoseconds) * 1e-9; }

/// The folder that a path stands for once every symbolic link on the way is followed; errno on
/// failure.
struct ResolvedFolder {
  std::string path;
  std::uint32_t birthTime = 0;
  int error = 0;
};

ResolvedFolder failed(int error) { return {{}, 0, error}; }

std::uint32_t birthTimeOf(const struct statx& status) {
  if (!(status.stx_mask & STATX_BTIME)) return 0;
  const std::int64_t time = status.stx_btime.tv_sec;
  return time < 0 || time > UINT32_MAX ? 0 : static_cast<std::uint32_t>(time);
}

ResolvedFolder resolveFolder(const std::string& path) {
  const std::unique_ptr<char, decltype(&free)> real(realpath(path.c_str(), nullptr), &free);
  if (!real) return failed(errno);
  struct statx status;
  if (statx(AT_FDCWD, real.get(), AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_BTIME, &status) != 0) {
    return failed(errno);
  }
  if (!S_ISDIR(status.stx_mode)) return failed(ENOTDIR);
  // A folder that cannot be listed would show as an empty map without a word.
  if (!sizewalk::openDirectory(real.get()).valid()) return failed(errno);
  return {real.get(), birthTimeOf(status), 0};
}

ScanSummary summarise(const TreeScanner& scanner) {
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
  summary.method = static_cast<std::uint32_t>(ListingStrategy::Enumerate);
  return summary;
}

}  // namespace

std::string absolutePath(const std::string& path) {
  namespace fs = std::filesystem;
  if (path.empty()) return path;
  std::error_code error;
  fs::path absolute = fs::absolute(path, error);
  if (error) absolute = path;
  if (std::ranges::find(absolute, "..") != absolute.end()) {
    const fs::path real = fs::canonical(absolute, error);
    if (!error) absolute = real;
  }
  std::string normal = absolute.lexically_normal().native();
  while (normal.size() > 1 && normal.back() == '/') normal.pop_back();
  return normal;
}

ScanController::ScanController(std::function<void(const sizewalk::ScanProgress&)> onProgress,
                               std::function<void()> onFinished)
    : onProgress_(std::move(onProgress)), onFinished_(std::move(onFinished)) {}

ScanController::~ScanController() {
  stop();
  join();
}

void ScanController::join() {
  if (thread_.joinable()) thread_.join();
  running_ = false;
}

void ScanController::stop() {
  if (scanner_ && running_) scanner_->cancel();
}

void ScanController::start(const std::string& path) {
  stop();
  join();
  path_ = absolutePath(path);
  summary_ = {};
  sizewalk::ScanOptions options = sizewalk::ScanOptions::startingNow();
  options.setLastScanTime(sizewalk::lastScanTime(path_));
  scanner_ = std::make_unique<TreeScanner>(options);
  scanner_->onProgress = onProgress_;
  running_ = true;
  finished_ = false;
  neverStarted_ = false;
  thread_ = std::thread([this, scanner = scanner_.get(), folder = path_] { run(scanner, folder); });
}

const ScanSummary& ScanController::summary() const {
  static const ScanSummary kNone;
  return finished() ? summary_ : kNone;
}

void ScanController::run(TreeScanner* scanner, const std::string& path) {
  const Clock::time_point started = Clock::now();
  const ResolvedFolder folder = resolveFolder(path);
  if (folder.error == 0) {
    scanner->setRoot(folder.path, folder.birthTime);
    scanner->walk(sizewalk::kRootNode);
  }
  ScanSummary summary = summarise(*scanner);
  summary.failure = static_cast<std::uint32_t>(folder.error);
  if (folder.error != 0) summary.failureText = std::generic_category().message(folder.error);
  summary.elapsedSeconds = seconds(Clock::now() - started);
  if (!summary.cancelled && folder.error == 0) sizewalk::recordScan(path, 0);
  summary_ = summary;
  finished_.store(true, std::memory_order_release);
  if (onFinished_) onFinished_();
}

}  // namespace app
