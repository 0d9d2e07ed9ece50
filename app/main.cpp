#include <malloc.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <span>

#include "app/command_line.h"
#include "app/main_window.h"
#include "app/model/product.h"
#include "app/model/settings_store.h"
#include "base/detached_threads.h"
#include "base/file_lock.h"
#include "sizewalk/fatal.h"
#include "ui/connection.h"
#include "ui/single_instance.h"
#include "ui/startup_notification.h"

namespace {

/// What threads that still read or draw are given to end by themselves. One that waits for a disk
/// that does not answer never does, and the user waits for the program meanwhile.
constexpr std::chrono::milliseconds kLongestEnd{100};

/// What the settings are given to reach their file: the wait for another process that writes it,
/// and as long again for the disk. The user sees nothing of it, the window is gone.
constexpr std::chrono::milliseconds kLongestSave = 2 * base::FileLock::kLongestWait;

/// Whoever flips a switch and closes the window at once finds it flipped at the next start.
void awaitSettings() {
  app::SettingsStore::instance().awaitSaved(std::chrono::steady_clock::now() + kLongestSave);
}

/// Large arrays of a scan and of its pictures go back to the system as soon as they are freed.
/// Otherwise the C library keeps what it takes for memory that is used again soon, and raises by
/// itself what it takes for large: 20 MB more after a scan of a million files.
void giveLargeMemoryBack() {
#ifdef __GLIBC__
  constexpr int kLarge = 256 * 1024;
  mallopt(M_MMAP_THRESHOLD, kLarge);
#endif
}

/// Says in one plain line why the program ends, where nobody has caught what was thrown: as when
/// memory runs out on the window's thread.
[[noreturn]] void endWithALine() noexcept {
  try {
    if (std::current_exception()) throw;
  } catch (const std::bad_alloc&) {
    sizewalk::endProgram("Heap Gauge: out of memory.");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "Heap Gauge: %s.\n", error.what());
  }
  std::abort();
}

/// Ends the program as returning from `main` does, but for the destruction of what threads that
/// hang may still use.
[[noreturn]] void leaveThreadsBehind(int status) {
  std::fflush(stdout);
  std::fflush(stderr);
  std::_Exit(status);
}

/// Returns when the window is closed and gone.
int runWindow(const app::CommandLine& command) {
  // A frame may be on its way to a server that has gone: that is told of, it ends nothing by
  // itself.
  std::signal(SIGPIPE, SIG_IGN);
  // Above all that this returns past: whoever started us waits for an answer on every way out.
  ui::StartupNotification startup(ui::StartupId::fromEnvironment());
  // A capture is a run of its own, beside whatever else is open.
  const bool single = command.capturePath.empty();
  if (single && ui::handOver(app::kInstanceNames, command.path)) return 0;
  const std::unique_ptr<ui::Connection> connection = ui::Connection::open();
  if (!connection) {
    std::fputs(app::noDisplayMessage().c_str(), stderr);
    return 1;
  }
  auto window = std::make_unique<app::MainWindow>(*connection);
  window->follow(startup);
  ui::Connection::setLostAction(&awaitSettings);
  if (!window->create()) {
    window.reset();
    std::fputs(app::noWindowMessage().c_str(), stderr);
    return 1;
  }
  if (single) {
    ui::claimInstance(app::kInstanceNames, *connection, window->xid());
    window->checkForUpdates();
  }
  if (!command.path.empty()) window->scanPath(command.path);
  if (!command.capturePath.empty()) window->captureAfter(command.capturePath, command.captureDelay);
  window->run();
  window.reset();
  awaitSettings();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::set_terminate(&endWithALine);
  giveLargeMemoryBack();
  const app::CommandLine command = app::parseCommandLine(
      std::span<const char* const>(argv, argc > 0 ? static_cast<std::size_t>(argc) : 0)
          .subspan(argc > 0 ? 1 : 0));
  switch (command.action) {
    case app::CommandLine::Action::PrintVersion:
      std::fputs(app::versionText().c_str(), stdout);
      return 0;
    case app::CommandLine::Action::PrintUsage:
      std::fputs(app::usageText().c_str(), stdout);
      return 0;
    case app::CommandLine::Action::Run:
      break;
  }
  const int status = runWindow(command);
  const auto deadline = std::chrono::steady_clock::now() + kLongestEnd;
  if (!base::awaitDetachedThreads(deadline)) leaveThreadsBehind(status);
  return status;
}
