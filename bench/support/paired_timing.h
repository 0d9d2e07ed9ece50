#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

namespace bench {

/// Two ways of doing one thing, timed in one run of one program.
struct PairedTiming {
  /// Medians, in milliseconds.
  double baselineMs = 0;
  double candidateMs = 0;
  /// Median over the pairs of baseline time ÷ candidate time: how many times as fast the candidate
  /// is.
  double speedup = 0;
};

inline double median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/// The value that the share `share` of the values, 0 to 1, does not exceed.
inline double percentile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const double place = std::ceil(share * static_cast<double>(values.size()));
  return values[static_cast<std::size_t>(std::max(place, 1.0)) - 1];
}

inline double timeMs(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

/// Runs the two in turns, A B A B ..., `pairs` times each after one untimed turn that warms the
/// caches and the memory up. A neighbour on the machine slows both sides of a pair alike, so the
/// ratio is taken within each pair, where the ratio of the two medians might compare a busy moment
/// with a quiet one.
inline PairedTiming timePaired(std::size_t pairs, const std::function<void()>& baseline,
                               const std::function<void()>& candidate) {
  std::vector<double> baselineTimes;
  std::vector<double> candidateTimes;
  std::vector<double> ratios;
  baseline();
  candidate();
  for (std::size_t i = 0; i < pairs; ++i) {
    baselineTimes.push_back(timeMs(baseline));
    candidateTimes.push_back(timeMs(candidate));
    ratios.push_back(baselineTimes.back() / candidateTimes.back());
  }
  return {median(baselineTimes), median(candidateTimes), median(ratios)};
}

}  // namespace bench
