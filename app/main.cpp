#include <cstdio>
#include <memory>
#include <span>

#include "app/command_line.h"
#include "app/main_window.h"
#include "app/product.h"
#include "ui/connection.h"
#include "ui/single_instance.h"

namespace {

int runWindow(const app::CommandLine& command) {
  // A capture is a run of its own, beside whatever else is open.
  const bool single = command.capturePath.empty();
  if (single && ui::handOver(app::kInstanceNames, command.path)) return 0;
  const std::unique_ptr<ui::Connection> connection = ui::Connection::open();
  if (!connection) {
    std::fputs(app::noDisplayMessage().c_str(), stderr);
    return 1;
  }
  auto window = std::make_unique<app::MainWindow>(*connection);
  if (!window->create()) {
    window.reset();
    std::fputs(app::noWindowMessage().c_str(), stderr);
    return 1;
  }
  if (single) ui::claimInstance(app::kInstanceNames, *connection, window->xid());
  if (!command.path.empty()) window->scanPath(command.path);
  if (!command.capturePath.empty()) window->captureAfter(command.capturePath, command.captureDelay);
  window->run();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
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
  return runWindow(command);
}
