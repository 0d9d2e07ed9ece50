#include "tests/app/own_volumes.h"

#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace {

struct Fullness {
  std::uint64_t free;
  std::uint64_t used;
};

struct Volumes {
  std::mutex mutex;
  std::condition_variable changed;
  bool active = false;
  std::map<std::string, Fullness> known;
  std::optional<Fullness> others;

  const Fullness* find(const std::string& path) const {
    const auto found = known.find(path);
    if (found != known.end()) return &found->second;
    return others ? &*others : nullptr;
  }
  int held = 0;
  int answered = 0;
};

Volumes& volumes() {
  static Volumes theVolumes;
  return theVolumes;
}

std::string pathOf(int fd) {
  std::array<char, 4096> path{};
  const ssize_t length =
      readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path.data(), path.size());
  return {path.data(), static_cast<std::size_t>(length > 0 ? length : 0)};
}

void fill(struct statvfs* out, const Fullness& fullness) {
  *out = {};
  out->f_bsize = out->f_frsize = 1;
  out->f_blocks = fullness.free + fullness.used;
  out->f_bfree = out->f_bavail = fullness.free;
}

int asItIs(int fd, struct statvfs* out) {
  struct statfs status {};
  if (syscall(SYS_fstatfs, fd, &status) != 0) return -1;
  *out = {};
  out->f_bsize = static_cast<unsigned long>(status.f_bsize);
  out->f_frsize = static_cast<unsigned long>(status.f_frsize ? status.f_frsize : status.f_bsize);
  out->f_blocks = status.f_blocks;
  out->f_bfree = status.f_bfree;
  out->f_bavail = status.f_bavail;
  return 0;
}

}  // namespace

extern "C" int fstatvfs(int fd, struct statvfs* out) {
  Volumes& all = volumes();
  std::unique_lock lock(all.mutex);
  if (!all.active) return asItIs(fd, out);
  const std::string path = pathOf(fd);
  ++all.held;
  all.changed.notify_all();
  all.changed.wait(lock, [&] { return all.find(path) || !all.active; });
  --all.held;
  const Fullness* const answer = all.find(path);
  if (!all.active || !answer) return asItIs(fd, out);
  all.answered += !all.known.contains(path);
  fill(out, *answer);
  return 0;
}

namespace test {

OwnVolumes::OwnVolumes() {
  const std::lock_guard lock(volumes().mutex);
  if (volumes().active) throw std::runtime_error("there are such volumes already");
  volumes().active = true;
  volumes().known.clear();
  volumes().others.reset();
  volumes().answered = 0;
}

OwnVolumes::~OwnVolumes() {
  const std::lock_guard lock(volumes().mutex);
  volumes().active = false;
  volumes().changed.notify_all();
}

bool OwnVolumes::waitUntilHeld() const {
  std::unique_lock lock(volumes().mutex);
  return volumes().changed.wait_for(lock, std::chrono::seconds(20),
                                    [] { return volumes().held > 0; });
}

void OwnVolumes::answerFor(const std::string& folder, std::uint64_t freeBytes,
                           std::uint64_t usedBytes) {
  const std::lock_guard lock(volumes().mutex);
  volumes().known[folder] = {freeBytes, usedBytes};
  volumes().changed.notify_all();
}

void OwnVolumes::answerForOthers(std::uint64_t freeBytes, std::uint64_t usedBytes) {
  const std::lock_guard lock(volumes().mutex);
  volumes().others = {freeBytes, usedBytes};
  volumes().changed.notify_all();
}

int OwnVolumes::answered() const {
  const std::lock_guard lock(volumes().mutex);
  return volumes().answered;
}

}  // namespace test
