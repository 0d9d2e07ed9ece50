#include "bench/support/running_program.h"

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "tests/support/temp_directory.h"

namespace bench {

namespace {

constexpr std::chrono::milliseconds kIdle(500);
constexpr int kIdlePeriods = 120;  // a minute of them

/// User and system time of the process, in the kernel's ticks.
long processorTicks(pid_t pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  std::string skipped;
  // Fields 14 and 15. The name in the second has no spaces here.
  for (int field = 1; field < 14; ++field) file >> skipped;
  long user = 0;
  long system = 0;
  if (!(file >> user >> system)) throw std::runtime_error("the program has ended");
  return user + system;
}

/// The command that starts the program, for which it writes the settings.
std::vector<std::string> prepared(const std::string& home, const std::string& scannedPath) {
  test::writeFile(home + "/.config/heapgauge/settings.ini",
                  "[Heapgauge]\nShowPhysicalFileSize=false\n");
  return {HEAPGAUGE_PROGRAM, scannedPath};
}

}  // namespace

RunningProgram::RunningProgram(test::OtherClient& client, const std::string& scannedPath, int width,
                               int height)
    : child_(prepared(home_.path(), scannedPath)) {
  const unsigned long window = client.shownWindow("Heapgauge");
  client.resizeWindow(window, width, height);
  client.focus(window);
}

void RunningProgram::waitUntilIdle() const {
  long before = processorTicks(child_.pid());
  for (int i = 0; i < kIdlePeriods; ++i) {
    std::this_thread::sleep_for(kIdle);
    const long now = processorTicks(child_.pid());
    if (now == before) return;
    before = now;
  }
  throw std::runtime_error("the program does not come to rest");
}

long RunningProgram::status(const std::string& field) const {
  std::ifstream file("/proc/" + std::to_string(child_.pid()) + "/status");
  std::string word;
  long number = 0;
  while (file >> word) {
    if (word == field + ":" && file >> number) return number;
  }
  throw std::runtime_error("the program has ended");
}

int RunningProgram::threads() const { return static_cast<int>(status("Threads")); }

double RunningProgram::peakMemory() const { return static_cast<double>(status("VmHWM")) * 1024; }

}  // namespace bench
