#include "tests/support/x_server.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "tests/support/x_server_process.h"

namespace test {

namespace {

using Servers = std::vector<std::unique_ptr<XServerProcess>>;

/// Those that are as new and that no test uses, the last one used last. They end with the test
/// program.
Servers& idleServers() {
  static Servers servers;
  return servers;
}

std::vector<std::string> argumentsFor(const XServerOptions& options) {
  std::vector<std::string> arguments = {
      "Xvfb", "-screen", "0",
      std::to_string(options.width) + "x" + std::to_string(options.height) + "x" +
          std::to_string(options.depth),
      "-dpi", std::to_string(options.dpi), "-nolisten", "tcp",
      // Else it takes a third of its start to load what draws in three dimensions.
      "-extension", "GLX",
      // Else the server forgets the root's properties when its last client leaves, and refuses
      // connections meanwhile.
      "-noreset"};
  arguments.insert(arguments.end(), options.extraArguments.begin(), options.extraArguments.end());
  return arguments;
}

std::unique_ptr<XServerProcess> takeServer(const std::vector<std::string>& arguments) {
  Servers& idle = idleServers();
  const auto fits = [&](const auto& server) { return server->arguments() == arguments; };
  const auto found = std::find_if(idle.rbegin(), idle.rend(), fits);
  if (found == idle.rend()) return std::make_unique<XServerProcess>(arguments);
  std::unique_ptr<XServerProcess> server = std::move(*found);
  idle.erase(std::next(found).base());
  return server;
}

std::unique_ptr<XServerProcess> serverFor(const XServerOptions& options) {
  const std::vector<std::string> arguments = argumentsFor(options);
  return options.startedAnew ? std::make_unique<XServerProcess>(arguments) : takeServer(arguments);
}

}  // namespace

XServer::XServer(const XServerOptions& options)
    : startedAnew_(options.startedAnew), process_(serverFor(options)) {
  environment_.set("DISPLAY", display());
  if (!options.resources.empty()) publishResources(options.resources);
}

XServer::~XServer() {
  if (!startedAnew_ && process_->becomesAsNew()) idleServers().push_back(std::move(process_));
}

const std::string& XServer::display() const { return process_->display(); }
pid_t XServer::pid() const { return process_->pid(); }
std::size_t XServer::memory() const { return process_->memory(); }

void XServer::publishResources(const std::string& resources) const {
  Display* display = XOpenDisplay(this->display().c_str());
  if (!display) throw std::runtime_error("the X server takes no connections");
  XChangeProperty(display, DefaultRootWindow(display), XA_RESOURCE_MANAGER, XA_STRING, 8,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(resources.data()),
                  static_cast<int>(resources.size()));
  XCloseDisplay(display);
}

}  // namespace test
