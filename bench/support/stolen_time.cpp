#include "bench/support/stolen_time.h"

#include <fstream>
#include <string>

namespace bench {

long stolenTicks() {
  std::ifstream file("/proc/stat");
  std::string cpu;
  long ticks = 0;
  file >> cpu;
  for (int field = 1; field <= 8; ++field) file >> ticks;
  return ticks;
}

}  // namespace bench
