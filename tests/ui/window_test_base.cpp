#include "tests/ui/window_test_base.h"

#include <chrono>
#include <stdexcept>

#include "ui/x11.h"

namespace test {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kDeadline{10};

std::unique_ptr<ui::Connection> openConnection() {
  auto connection = ui::Connection::open();
  if (!connection) throw std::runtime_error("no connection to the X server");
  return connection;
}

}  // namespace

WindowOnServer::WindowOnServer(const XServerOptions& options)
    : server(options), connection(openConnection()), window(*connection) {}

void WindowOnServer::show(int width, int height) {
  bool painted = false;
  const auto onPaint = window.onPaint;
  window.onPaint = [&](ui::Canvas& canvas) {
    if (onPaint) onPaint(canvas);
    painted = true;
  };
  if (!window.create("Window under test", width, height)) throw std::runtime_error("no window");
  window.show();
  if (!runUntil([&] { return painted; })) throw std::runtime_error("the window was not painted");
  window.onPaint = onPaint;
}

bool WindowOnServer::runUntil(const std::function<bool()>& condition) {
  const auto deadline = Clock::now() + kDeadline;
  bool held = false;
  window.setTick(1, [&] {
    held = condition();
    if (held || Clock::now() > deadline) window.quit();
  });
  window.run();
  window.stopTick();
  return held;
}

void WindowOnServer::settle() {
  // The answer to a round trip comes after every event sent before it.
  XSync(connection->native().display, False);
  int ticks = 0;
  runUntil([&] { return ++ticks == 2; });
}

Picture WindowOnServer::paint(const std::function<void(ui::Canvas&)>& onPaint) {
  if (window.xid() == 0) show();
  window.onPaint = onPaint;
  window.invalidate();
  settle();
  window.onPaint = nullptr;
  return capture();
}

Picture WindowOnServer::capture() const {
  const std::string path = directory / "frame.ppm";
  if (!window.capture(path)) throw std::runtime_error("no capture");
  return readPpm(path);
}

}  // namespace test
