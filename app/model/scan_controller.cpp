#include "app/model/scan_controller.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "app/model/parallel.h"
#include "sizewalk/directory_reader.h"
#include "sizewalk/scan_history.h"

namespace app {

namespace {

using Clock = std::chrono::steady_clock;
using sizewalk::ListingStrategy;
using sizewalk::TreeScanner;

double seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

double seconds(std::uint64_t nanoseconds) { return static_cast<double>(nanoseconds) * 1e-9; }

/// The folder that a path stands for once every symbolic link on the way is followed.
struct ResolvedFolder {
  std::string path;
  std::uint32_t birthTime = 0;
  int error = 0;  // an errno, 0 when the folder can be scanned
};

/// A path beyond what the kernel takes is used as it stands: only it, not what links on the way
/// make of it, can be asked for.
std::string resolveLinks(const std::string& path) {
  if (path.size() >= PATH_MAX) return path;
  const std::unique_ptr<char, decltype(&free)> real(realpath(path.c_str(), nullptr), &free);
  return real ? real.get() : std::string();
}

ResolvedFolder resolveFolder(const std::string& path) {
  const std::string real = resolveLinks(path);
  if (real.empty()) return {{}, 0, path.empty() ? ENOENT : errno};
  // A folder that cannot be opened would show as an empty map without a word.
  const base::FileDescriptor folder = sizewalk::openDirectory(real);
  if (!folder.valid()) return {{}, 0, errno};
  struct statx status;
  if (statx(folder.get(), "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_BTIME | STATX_CTIME,
            &status) != 0) {
    return {{}, 0, errno};
  }
  return {real, sizewalk::birthOrChangeTime(status), 0};
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

ScanSummary failure(int error) {
  ScanSummary summary;
  summary.failure = static_cast<std::uint32_t>(error);
  summary.failureText = std::generic_category().message(error);
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
    if (error) return absolute;  // as it stands: the scan will say what is wrong with it
    absolute = real;
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

void ScanController::drop() {
  if (!finished()) return;
  join();
  scanner_.reset();
  finished_ = false;
}

void ScanController::start(const std::string& path) {
  stop();
  join();
  path_ = absolutePath(path);
  summary_ = {};
  sizewalk::ScanOptions options;
  options.setLastScanTime(sizewalk::lastScanTime(path_));
  scanner_ = std::make_unique<TreeScanner>(options);
  scanner_->onProgress = onProgress_;
  running_ = true;
  finished_ = false;
  neverStarted_ = false;
  try {
    thread_ =
        std::thread([this, scanner = scanner_.get(), folder = path_] { run(scanner, folder); });
  } catch (const std::system_error& error) {
    finish(failure(error.code().value()));
  }
}

const ScanSummary& ScanController::summary() const {
  static const ScanSummary kNone;
  return finished() ? summary_ : kNone;
}

void ScanController::run(TreeScanner* scanner, const std::string& path) {
  giveWayToWindow();
  const Clock::time_point started = Clock::now();
  const ResolvedFolder folder = resolveFolder(path);
  if (folder.error != 0) {
    finish(failure(folder.error));
    return;
  }
  scanner->setRoot(folder.path, folder.birthTime);
  scanner->walk(sizewalk::kRootNode);
  ScanSummary summary = summarise(*scanner);
  summary.elapsedSeconds = seconds(Clock::now() - started);
  if (!summary.cancelled) sizewalk::recordScan(path, 0);
  finish(summary);
}

void ScanController::finish(const ScanSummary& summary) {
  summary_ = summary;
  finished_.store(true, std::memory_order_release);
  if (onFinished_) onFinished_();
}

}  // namespace app
