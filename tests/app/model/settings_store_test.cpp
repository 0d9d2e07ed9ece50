#include "app/model/settings_store.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/file_descriptor.h"
#include "base/file_lock.h"
#include "tests/support/blocking_file_system.h"
#include "tests/support/environment.h"
#include "tests/support/file_access.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongTime{20};

/// A configuration directory of the test's own.
class Configuration {
 public:
  std::string home() const { return directory_ / "config"; }
  std::string file() const { return home() + "/heapgauge/settings.ini"; }
  std::string temporaryFile() const { return file() + ".tmp"; }
  void write(std::string_view text) const { test::writeFile(file(), text); }
  SettingsStore open() const { return SettingsStore(home()); }

 private:
  test::TempDirectory directory_;
};

/// Waits until what was changed is in the file, or is known not to come there.
bool saved(const SettingsStore& store) { return store.awaitSaved(Clock::now() + kLongTime); }

void setAndSave(SettingsStore& store, std::string_view key, bool value) {
  store.setBool(key, value);
  ASSERT_TRUE(saved(store));
}

unsigned modeOf(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

TEST(ConfigurationHome, FollowsTheEnvironment) {
  test::ScopedEnvironment environment;
  environment.set("XDG_CONFIG_HOME", "/etc/me");
  environment.set("HOME", "/home/me");
  EXPECT_EQ(configurationHome(), "/etc/me");
  environment.set("XDG_CONFIG_HOME", "");
  EXPECT_EQ(configurationHome(), "/home/me/.config");
  environment.unset("XDG_CONFIG_HOME");
  EXPECT_EQ(configurationHome(), "/home/me/.config");
}

TEST(ConfigurationHome, FallsBackToTheHomeOfTheAccount) {
  const passwd* account = getpwuid(geteuid());
  if (!account) GTEST_SKIP() << "the user running the tests has no account entry";
  test::ScopedEnvironment environment;
  environment.unset("XDG_CONFIG_HOME");
  environment.unset("HOME");
  EXPECT_EQ(configurationHome(), std::string(account->pw_dir) + "/.config");
}

TEST(SettingsStore, CreatesItsDirectoriesForTheUserAlone) {
  const Configuration configuration;
  const mode_t old = umask(0);
  configuration.open();
  umask(old);
  EXPECT_EQ(modeOf(configuration.home()), 0700u);
  EXPECT_EQ(modeOf(configuration.home() + "/heapgauge"), 0700u);
  EXPECT_FALSE(fs::exists(configuration.file()));
}

TEST(SettingsStore, GivesDefaultsWithoutAFile) {
  const SettingsStore store = Configuration().open();
  EXPECT_TRUE(store.getBool("ShowFileKinds", true));
  EXPECT_FALSE(store.getBool("ShowFileKinds", false));
}

TEST(SettingsStore, GivesEachSettingItsOwnDefault) {
  const SettingsStore store = Configuration().open();
  EXPECT_FALSE(store.get(setting::kSplitHorizontally));
  EXPECT_TRUE(store.get(setting::kShowFileKinds));
  EXPECT_FALSE(store.get(setting::kShowFreeSpace));
  EXPECT_FALSE(store.get(setting::kShowOtherSpace));
  EXPECT_TRUE(store.get(setting::kShowPhysicalFileSize));
  EXPECT_TRUE(store.get(setting::kConsistentKindColours));
  EXPECT_TRUE(store.get(setting::kCheckForUpdates));
}

TEST(SettingsStore, FindsEachSettingByItsKeyInTheFile) {
  const Configuration configuration;
  configuration.write(
      "[Heapgauge]\nSplitHorizontally=true\nShowFileKinds=false\nShowFreeSpace=true\n"
      "ShowOtherSpace=true\nShowPhysicalFileSize=false\nConsistentKindColours=false\n"
      "CheckForUpdates=false\n");
  const SettingsStore store = configuration.open();
  EXPECT_TRUE(store.get(setting::kSplitHorizontally));
  EXPECT_FALSE(store.get(setting::kShowFileKinds));
  EXPECT_TRUE(store.get(setting::kShowFreeSpace));
  EXPECT_TRUE(store.get(setting::kShowOtherSpace));
  EXPECT_FALSE(store.get(setting::kShowPhysicalFileSize));
  EXPECT_FALSE(store.get(setting::kConsistentKindColours));
  EXPECT_FALSE(store.get(setting::kCheckForUpdates));
}

TEST(SettingsStore, ReadsBooleansOfItsSection) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nShowFileKinds=false\n  ShowFreeSpace = true \t\r\nLast=true");
  const SettingsStore store = configuration.open();
  EXPECT_FALSE(store.getBool("ShowFileKinds", true));
  EXPECT_TRUE(store.getBool("ShowFreeSpace", false));
  EXPECT_TRUE(store.getBool("Last", false));
}

TEST(SettingsStore, TakesOnlyTheExactWords) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nA=False\nB=TRUE\nC=1\nD=yes\nE=\nF=true false\nG==true\n");
  const SettingsStore store = configuration.open();
  for (const char* key : {"A", "B", "C", "D", "E", "F", "G"}) {
    EXPECT_TRUE(store.getBool(key, true)) << key;
    EXPECT_FALSE(store.getBool(key, false)) << key;
  }
}

TEST(SettingsStore, IgnoresOtherSections) {
  const Configuration configuration;
  configuration.write(
      "A=true\n[heapgauge]\nB=true\n[ Heapgauge ]\nC=true\n[]\nD=true\n[Heapgauge]\nE=true\n"
      "[Other]\nF=true\n");
  const SettingsStore store = configuration.open();
  for (const char* key : {"A", "B", "C", "D", "F"}) EXPECT_FALSE(store.getBool(key, false)) << key;
  EXPECT_TRUE(store.getBool("E", false));
}

TEST(SettingsStore, ReadsASectionThatComesBack) {
  const Configuration configuration;
  configuration.write(" [Heapgauge] \nA=true\n[x]\nB=true\n[Heapgauge]\nC=true\n[\nD=true\n");
  const SettingsStore store = configuration.open();
  EXPECT_TRUE(store.getBool("A", false));
  EXPECT_FALSE(store.getBool("B", false));
  EXPECT_TRUE(store.getBool("C", false));
  EXPECT_TRUE(store.getBool("D", false));  // a lone bracket is no header
}

TEST(SettingsStore, SkipsCommentsAndLinesWithoutAnEqualsSign) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\n#A=true\n ;B=true\ntrue\n\nC=true\n");
  const SettingsStore store = configuration.open();
  EXPECT_FALSE(store.getBool("#A", false));
  EXPECT_FALSE(store.getBool("A", false));
  EXPECT_FALSE(store.getBool(";B", false));
  EXPECT_FALSE(store.getBool("B", false));
  EXPECT_FALSE(store.getBool("true", false));
  EXPECT_TRUE(store.getBool("C", false));
}

TEST(SettingsStore, LetsTheLaterLineOfAKeyCount) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nA=true\nA=false\n");
  EXPECT_FALSE(configuration.open().getBool("A", true));
}

TEST(SettingsStore, SurvivesGarbage) {
  const Configuration configuration;
  std::string bytes;
  for (unsigned i = 0; i < 100000; ++i) bytes += static_cast<char>(i * i * 31 + i * 7 + i / 256);
  configuration.write(bytes + std::string("\n[Heapgauge]\n") + std::string(200000, '=') + "\n" +
                      std::string(200000, ' ') + "A=true");
  EXPECT_TRUE(configuration.open().getBool("A", false));
}

TEST(SettingsStore, SavesEveryChangeInKeyOrder) {
  const Configuration configuration;
  SettingsStore store = configuration.open();
  setAndSave(store, "ShowFreeSpace", true);
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nShowFreeSpace=true\n");
  setAndSave(store, "CheckForUpdates", false);
  EXPECT_EQ(test::readFile(configuration.file()),
            "[Heapgauge]\nCheckForUpdates=false\nShowFreeSpace=true\n");
  EXPECT_FALSE(fs::exists(configuration.temporaryFile()));
  EXPECT_TRUE(configuration.open().getBool("ShowFreeSpace", false));
}

TEST(SettingsStore, KeepsUnknownKeysButNotCommentsAndOtherSections) {
  const Configuration configuration;
  configuration.write("# mine\n[Other]\nX=1\n[Heapgauge]\n Future = a = b \n=\nA=maybe\n");
  SettingsStore store = configuration.open();
  setAndSave(store, "B", true);
  EXPECT_EQ(test::readFile(configuration.file()),
            "[Heapgauge]\n=\nA=maybe\nB=true\nFuture=a = b\n");
}

TEST(SettingsStore, DoesNotTouchTheFileForAValueThatIsStored) {
  const Configuration configuration;
  const std::string text = "# mine\n[Heapgauge]\nA=true\nB=false\n";
  configuration.write(text);
  SettingsStore store = configuration.open();
  setAndSave(store, "A", true);
  setAndSave(store, "B", false);
  EXPECT_EQ(test::readFile(configuration.file()), text);
}

TEST(SettingsStore, StoresAValueThatEqualsTheDefault) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nA=True\n");
  SettingsStore store = configuration.open();
  setAndSave(store, "A", true);
  setAndSave(store, "B", false);
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\nB=false\n");
}

TEST(SettingsStore, KeepsTheOldFileWhenTheDiskIsFull) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nA=true\n");
  SettingsStore store = configuration.open();
  fs::create_symlink("/dev/full", configuration.temporaryFile());
  setAndSave(store, "A", false);
  EXPECT_FALSE(store.getBool("A", true));
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\n");
  EXPECT_TRUE(fs::is_symlink(configuration.temporaryFile()));  // what could not be written stays
}

TEST(SettingsStore, KeepsTheValueWhenNothingCanBeWritten) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nA=true\n");
  SettingsStore store = configuration.open();
  fs::create_directory(configuration.temporaryFile());
  setAndSave(store, "A", false);
  EXPECT_FALSE(store.getBool("A", true));
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\n");
}

TEST(SettingsStore, LeavesNothingBesideWhatIsNoFile) {
  const Configuration configuration;
  test::writeFile(configuration.file() + "/in-the-way");
  SettingsStore store = configuration.open();
  setAndSave(store, "A", true);
  EXPECT_TRUE(store.getBool("A", false));
  EXPECT_FALSE(fs::exists(configuration.temporaryFile()));
}

TEST(SettingsStore, LeavesAloneWhatItCannotRead) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nPrecious=true\n");
  fs::permissions(configuration.file(), fs::perms::none);
  {
    const test::OrdinaryFileAccess ordinary;
    SettingsStore store = configuration.open();
    EXPECT_FALSE(store.getBool("Precious", false));
    setAndSave(store, "A", true);
    EXPECT_TRUE(store.getBool("A", false));
  }
  fs::permissions(configuration.file(), fs::perms::owner_all);
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nPrecious=true\n");
}

TEST(SettingsStore, LeavesAHugeFileAlone) {
  const Configuration configuration;
  test::writeSparseFile(configuration.file(), 200'000'000'000);
  SettingsStore store = configuration.open();
  setAndSave(store, "A", true);
  EXPECT_EQ(fs::file_size(configuration.file()), 200'000'000'000U);
}

TEST(SettingsStore, SavesWithTheNextChangeWhatCouldNotBeSaved) {
  const Configuration configuration;
  SettingsStore store = configuration.open();
  fs::create_directory(configuration.temporaryFile());
  setAndSave(store, "A", true);
  setAndSave(store, "B", true);
  fs::remove(configuration.temporaryFile());
  setAndSave(store, "B", false);
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\nB=false\n");
}

TEST(SettingsStore, KeepsWhatAnotherProgramHasChangedMeanwhile) {
  const Configuration configuration;
  SettingsStore one = configuration.open();
  SettingsStore other = configuration.open();
  setAndSave(one, "A", true);
  setAndSave(other, "B", true);
  setAndSave(one, "C", true);
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\nB=true\nC=true\n");
}

TEST(SettingsStore, WaitsForNoDiskThatHangs) {
  test::BlockingFileSystem disk;
  if (!disk.problem().empty()) GTEST_SKIP() << disk.problem();
  const Configuration configuration;
  test::makeDirectory(fs::path(configuration.file()).parent_path());
  fs::create_symlink(disk.path() + "/top", configuration.file());
  disk.hold(test::BlockingFileSystem::Request::Examine, "top");
  SettingsStore store = configuration.open();  // or this never returns
  ASSERT_TRUE(disk.waitUntilHeld());
  EXPECT_TRUE(store.getBool("A", true));
  store.setBool("A", false);
  store.setBool("B", true);
  EXPECT_FALSE(store.getBool("A", true));
  EXPECT_FALSE(store.awaitSaved(Clock::now()));
  // The disk comes back, with a file of its own. At no time there is none.
  test::writeFile(configuration.home() + "/other", "[Heapgauge]\nC=true\n");
  fs::rename(configuration.home() + "/other", configuration.file());
  disk.release();
  ASSERT_TRUE(saved(store));
  setAndSave(store, "D", true);
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=false\nB=true\nC=true\nD=true\n");
}

TEST(SettingsStore, WaitsForNoProcessThatKeepsTheLock) {
  const Configuration configuration;
  SettingsStore store = configuration.open();
  setAndSave(store, "A", true);
  {
    const base::FileLock kept(
        base::FileDescriptor(open((configuration.file() + ".lock").c_str(), O_RDWR | O_CLOEXEC)));
    ASSERT_TRUE(kept.held());
    store.setBool("B", true);
    EXPECT_FALSE(store.awaitSaved(Clock::now()));
    EXPECT_TRUE(saved(store));  // it has given up
  }
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\n");
  EXPECT_TRUE(store.getBool("B", false));
  setAndSave(store, "C", true);
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\nB=true\nC=true\n");
}

TEST(SettingsStore, TriesOnceMoreAtTheEndWhatCouldNotBeSaved) {
  const Configuration configuration;
  SettingsStore store = configuration.open();
  {
    const base::FileLock kept(base::FileDescriptor(
        open((configuration.file() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)));
    ASSERT_TRUE(kept.held());
    setAndSave(store, "A", true);
  }
  ASSERT_FALSE(fs::exists(configuration.file()));
  ASSERT_TRUE(saved(store));
  EXPECT_EQ(test::readFile(configuration.file()), "[Heapgauge]\nA=true\n");
}

TEST(SettingsStore, WritesAllThatItKnowsWhereTheFileIsGone) {
  const Configuration configuration;
  configuration.write("[Heapgauge]\nA=true\nOther=text\n");
  SettingsStore store = configuration.open();
  setAndSave(store, "B", true);
  fs::remove(configuration.file());
  setAndSave(store, "C", false);
  EXPECT_EQ(test::readFile(configuration.file()),
            "[Heapgauge]\nA=true\nB=true\nC=false\nOther=text\n");
}

TEST(SettingsStore, LivesInMemoryWithoutAConfigurationDirectory) {
  const test::TempDirectory directory;
  test::writeFile(directory / ".tmp", "not ours");
  const fs::path before = fs::current_path();
  fs::current_path(directory.path());
  SettingsStore store("");
  setAndSave(store, "A", true);
  fs::current_path(before);
  EXPECT_TRUE(store.getBool("A", false));
  EXPECT_EQ(test::readFile(directory / ".tmp"), "not ours");
}

// In a process of its own: the instance is made once, and other tests may have made it elsewhere.
TEST(SettingsStoreInstance, IsOneStoreInTheConfigurationHome) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto useInstance = [] {
    const test::PrivateHome home;
    SettingsStore& store = SettingsStore::instance();
    store.setBool("A", true);
    saved(store);
    const bool inFile =
        test::readFile(home.path() + "/.config/heapgauge/settings.ini") == "[Heapgauge]\nA=true\n";
    return inFile && &store == &SettingsStore::instance();
  };
  EXPECT_EXIT(std::_Exit(useInstance() ? 0 : 1), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace app
