#pragma once

#include <sys/types.h>

#include <fstream>
#include <string>

namespace test {

/// Whether a thread of this process, as gettid() names it, waits for something at the moment.
inline bool waits(pid_t thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string stat;
  std::getline(file, stat);
  return stat.substr(stat.rfind(')') + 1).starts_with(" S");
}

}  // namespace test
