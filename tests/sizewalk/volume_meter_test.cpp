#include "sizewalk/volume_meter.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/mutex.h"
#include "tests/support/eventually.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/temp_directory.h"

namespace sizewalk {

bool operator==(const VolumeUsage& a, const VolumeUsage& b) {
  return a.totalBytes == b.totalBytes && a.usedBytes == b.usedBytes && a.freeBytes == b.freeBytes;
}

void PrintTo(const VolumeUsage& usage, std::ostream* out) {
  *out << usage.totalBytes << '|' << usage.usedBytes << '|' << usage.freeBytes;
}

namespace {

constexpr VolumeUsage kNothing{};
constexpr VolumeUsage kSome{.totalBytes = 100, .usedBytes = 60, .freeBytes = 30};

TEST(UsageOf, KeepsWhatIsTheAdministratorsApart) {
  struct statvfs status {};
  status.f_frsize = 512;
  status.f_bsize = 4096;
  status.f_blocks = 100;
  status.f_bfree = 40;
  status.f_bavail = 30;
  EXPECT_EQ(usageOf(status),
            (VolumeUsage{.totalBytes = 100 * 512, .usedBytes = 60 * 512, .freeBytes = 30 * 512}));
}

TEST(UsageOf, BelievesNoFileSystemThatIsFreerThanItIsLarge) {
  struct statvfs status {};
  status.f_frsize = 1;
  status.f_blocks = 100;
  status.f_bfree = 200;
  status.f_bavail = ~fsblkcnt_t{0};
  EXPECT_EQ(usageOf(status), (VolumeUsage{.totalBytes = 100, .usedBytes = 0, .freeBytes = 100}));
}

TEST(UsageOf, HasAnEnd) {
  struct statvfs status {};
  status.f_frsize = 4096;
  status.f_blocks = ~fsblkcnt_t{0};
  EXPECT_EQ(usageOf(status).totalBytes, std::numeric_limits<std::uint64_t>::max());
}

TEST(MeasureVolume, CountsAsDfDoes) {
  const test::TempDirectory directory;
  const VolumeUsage usage = measureVolume(directory.path());
  struct statvfs status {};
  ASSERT_EQ(statvfs(directory.path().c_str(), &status), 0);
  EXPECT_EQ(usage.totalBytes, std::uint64_t{status.f_blocks} * status.f_frsize);
  EXPECT_GT(usage.usedBytes, 0u);
  EXPECT_LE(usage.usedBytes + usage.freeBytes, usage.totalBytes);
}

TEST(MeasureVolume, IsExactForAVolumeInMemory) {
  const test::TempDirectory directory;
  const std::string outcome = test::inPrivateMounts([&]() -> std::string {
    if (mount("tmpfs", directory.path().c_str(), "tmpfs", 0, "size=1m,mode=0711") != 0) {
      return "cannot mount";
    }
    test::writeFile(directory / "file", std::string(256 * 1024, 'x'));
    const VolumeUsage expected{
        .totalBytes = 1024 * 1024, .usedBytes = 256 * 1024, .freeBytes = 768 * 1024};
    if (!(measureVolume(directory.path()) == expected))
      return "measured " + testing::PrintToString(measureVolume(directory.path()));
    test::makeDirectory(directory / "deeper");
    return measureVolume(directory / "deeper") == expected ? "" : "a folder of it differs";
  });
  if (outcome.starts_with("cannot")) GTEST_SKIP() << outcome;
  EXPECT_EQ(outcome, "");
}

TEST(MeasureVolume, IsNothingForWhatHoldsNoFiles) {
  const test::TempDirectory directory;
  test::writeFile(directory / "file");
  EXPECT_EQ(measureVolume(directory / "file"), kNothing);
  EXPECT_EQ(measureVolume(directory / "missing"), kNothing);
  EXPECT_EQ(measureVolume(""), kNothing);
  EXPECT_EQ(measureVolume("/proc").totalBytes, 0u);
}

TEST(MeasureVolume, DoesNotWaitForAPipe) {
  const test::TempDirectory directory;
  ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(measureVolume(directory / "pipe"), kNothing);
}

/// Stands in for the servers of mounted volumes: each answers `kSome`, those called "/dead..." only
/// once they are revived.
class Servers {
 public:
  VolumeUsage answer(const std::string& mountPoint) {
    const base::MutexLock lock(mutex_);
    ++questions_[mountPoint];
    while (mountPoint.starts_with("/dead") && !revived_) revival_.wait(mutex_);
    return kSome;
  }
  void revive() {
    const base::MutexLock lock(mutex_);
    revived_ = true;
    revival_.notifyAll();
  }
  int questions(const std::string& mountPoint) {
    const base::MutexLock lock(mutex_);
    return questions_[mountPoint];
  }

 private:
  base::Mutex mutex_;  // guards the members below
  base::CondVar revival_;
  std::map<std::string, int> questions_ GUARDED_BY(mutex_);
  bool revived_ GUARDED_BY(mutex_) = false;
};

/// What a meter reported: the mount points, sorted.
class Answers {
 public:
  VolumeMeter::OnMeasured collect() {
    return [this](const std::string& mountPoint, const VolumeUsage& usage) {
      EXPECT_EQ(usage, kSome);
      const base::MutexLock lock(mutex_);
      mountPoints_.push_back(mountPoint);
    };
  }
  bool become(const std::vector<std::string>& expected) {
    return test::eventually([&] { return sorted() == expected; });
  }
  std::vector<std::string> sorted() {
    const base::MutexLock lock(mutex_);
    std::vector<std::string> mountPoints = mountPoints_;
    std::sort(mountPoints.begin(), mountPoints.end());
    return mountPoints;
  }

 private:
  base::Mutex mutex_;  // guards the member below
  std::vector<std::string> mountPoints_ GUARDED_BY(mutex_);
};

class VolumeMeterTest : public testing::Test {
 protected:
  VolumeMeterTest() {
    // Holds a reference to the servers until the meter's last thread has ended.
    meter_.emplace(answers_.collect(), [servers = servers_](const std::string& mountPoint) {
      return servers->answer(mountPoint);
    });
  }
  // No thread of the meter outlives the test.
  ~VolumeMeterTest() override {
    meter_.reset();
    servers_->revive();
    EXPECT_TRUE(threadsEnd());
  }

  /// Once the meter is gone.
  bool threadsEnd() const {
    return test::eventually([&] { return servers_.use_count() == 1; });
  }
  /// Waits until the server has been asked `count` times in all.
  bool asked(const std::string& mountPoint, int count) const {
    return test::eventually([&] { return servers_->questions(mountPoint) == count; });
  }

  const std::shared_ptr<Servers> servers_ = std::make_shared<Servers>();
  Answers answers_;
  std::atomic<int> nothings_ = 0;
  std::optional<VolumeMeter> meter_;
};

TEST_F(VolumeMeterTest, ReportsEveryAnswerOnce) {
  meter_->measure({"/a", "/b", "/c"});
  EXPECT_TRUE(answers_.become({"/a", "/b", "/c"}));
  meter_->measure({});
  meter_.reset();
  EXPECT_TRUE(threadsEnd());
  EXPECT_EQ(answers_.sorted(), (std::vector<std::string>{"/a", "/b", "/c"}));
}

TEST_F(VolumeMeterTest, LetsNoDeadVolumeDelayAnother) {
  meter_->measure({"/dead1", "/a", "/dead2", "/b"});
  EXPECT_TRUE(answers_.become({"/a", "/b"}));
  servers_->revive();
  EXPECT_TRUE(answers_.become({"/a", "/b", "/dead1", "/dead2"}));
}

TEST_F(VolumeMeterTest, AsksADeadVolumeOnce) {
  meter_->measure({"/dead", "/dead"});
  ASSERT_TRUE(asked("/dead", 1));
  for (int i = 0; i < 10; ++i) meter_->measure({"/dead"});
  meter_->measure({"/a"});
  EXPECT_TRUE(answers_.become({"/a"}));
  servers_->revive();
  EXPECT_TRUE(answers_.become({"/a", "/dead"}));
  meter_.reset();
  EXPECT_TRUE(threadsEnd());
  EXPECT_EQ(servers_->questions("/dead"), 1);
}

TEST_F(VolumeMeterTest, GoesWithoutWaitingAndReportsNothingAfterwards) {
  meter_->measure({"/dead"});
  ASSERT_TRUE(asked("/dead", 1));
  meter_.reset();
  servers_->revive();
  EXPECT_TRUE(threadsEnd());
  EXPECT_EQ(answers_.sorted(), std::vector<std::string>{});
}

TEST_F(VolumeMeterTest, ReportsNothingForWhatCannotBeMeasured) {
  meter_.emplace(
      [this](const std::string&, const VolumeUsage& usage) { nothings_ += usage == kNothing; },
      [](const std::string&) -> VolumeUsage { throw std::bad_alloc(); });
  meter_->measure({"/a", "/b"});
  EXPECT_TRUE(test::eventually([&] { return nothings_ == 2; }));
}

TEST(VolumeMeter, MeasuresRealVolumes) {
  const test::TempDirectory directory;
  test::writeFile(directory / "file");
  base::Mutex mutex;
  std::map<std::string, VolumeUsage> usages;
  VolumeMeter meter([&](const std::string& mountPoint, const VolumeUsage& usage) {
    const base::MutexLock lock(mutex);
    usages[mountPoint] = usage;
  });
  meter.measure({directory.path(), directory / "file"});
  ASSERT_TRUE(test::eventually([&] {
    const base::MutexLock lock(mutex);
    return usages.size() == 2;
  }));
  EXPECT_GT(usages[directory.path()].totalBytes, 0u);
  EXPECT_EQ(usages[directory / "file"], kNothing) << "is reported too";
}

}  // namespace
}  // namespace sizewalk
