#pragma once

#include <cstdint>
#include <string>

namespace test {

/// Holds up who asks how full a disk is until it is told what to say. For this the test program has
/// an `fstatvfs` of its own in place of the C library's. One at a time; any thread may call the
/// members.
class OwnVolumes {
 public:
  OwnVolumes();
  /// Lets everybody go on.
  ~OwnVolumes();
  OwnVolumes(const OwnVolumes&) = delete;
  OwnVolumes& operator=(const OwnVolumes&) = delete;

  /// Returns once somebody is held up; false when nobody came for twenty seconds.
  bool waitUntilHeld() const;
  /// The disk of `folder`, an absolute path without links, is like that; who was held up there goes
  /// on.
  void answerFor(const std::string& folder, std::uint64_t freeBytes, std::uint64_t usedBytes);
  /// The same for all other disks.
  void answerForOthers(std::uint64_t freeBytes, std::uint64_t usedBytes);
  /// How many have been told of another disk.
  int answered() const;
};

}  // namespace test
