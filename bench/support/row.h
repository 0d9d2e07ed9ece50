#pragma once

#include <cstdio>
#include <string>

namespace bench {

/// Prints one row of the figures' table: | question | ours | other | ratio | bar |.
inline void printRow(const std::string& question, const std::string& ours, const std::string& other,
                     const std::string& ratio, const std::string& bar) {
  std::printf("| %s | %s | %s | %s | %s |\n", question.c_str(), ours.c_str(), other.c_str(),
              ratio.c_str(), bar.c_str());
  std::fflush(stdout);
}

inline std::string milliseconds(double ms) {
  char text[32];
  std::snprintf(text, sizeof text, ms < 10 ? "%.2f ms" : "%.0f ms", ms);
  return text;
}

inline std::string nanoseconds(double ns) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f ns", ns);
  return text;
}

inline constexpr double kMiB = 1048576;

inline std::string mebibytes(double bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f MiB", bytes / kMiB);
  return text;
}

inline std::string times(double ratio) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", ratio);
  return text;
}

}  // namespace bench
