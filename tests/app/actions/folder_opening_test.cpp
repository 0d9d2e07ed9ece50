#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "app/actions/desktop.h"
#include "app/actions/item_opener.h"
#include "app/actions/process.h"
#include "base/detached_threads.h"
#include "base/file_descriptor.h"
#include "tests/app/actions/fake_program.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/posted_tasks.h"
#include "tests/support/scarcity.h"
#include "tests/support/temp_directory.h"

// A folder that is opened must not come back to the program that opens it.

namespace app {
namespace {

/// Opens folders with stand-ins for the desktop's programs.
class FolderOpeningTest : public testing::Test {
 protected:
  FolderOpeningTest() {
    opener_.onNoFileManager = [this] { ++told_; };
    opener_.onMissing = [this](const std::string& program) { missing_ += program; };
    opener_.onFailed = [] { FAIL() << "nothing could be started"; };
    programs_.add(kOpener, "printf '%s\\n' \"$1\" >> " + opened());
    glibAssociations("echo 'Default application: files.desktop'");
    fileManager("exit 1");
    useTimeLimits(TimeLimits::Never);
  }

  enum class TimeLimits { Never, Real };
  /// A machine that stalls must not turn a slow answer into none.
  void useTimeLimits(TimeLimits limits) {
    programs_.add("timeout", limits == TimeLimits::Real ? "exec /usr/bin/timeout \"$@\""
                                                        : "shift 3; exec \"$@\"");
  }
  std::string opened() const { return programs_ / "opened"; }
  void associations(const std::string& lines) { programs_.add(kAssociations, lines); }
  void glibAssociations(const std::string& lines) { programs_.add(kGlibAssociations, lines); }
  void fileManager(const std::string& lines) { programs_.add(kBusSender, lines); }
  /// Opens it and does what is left to do when it is known how.
  void open(const std::string& path) {
    opener_.open(path);
    ASSERT_TRUE(runTask());
  }
  bool runTask() {
    return test::eventually([this] { return tasks_.runFirst(); });
  }
  /// Whether the opener was started with these paths, each once and in this order.
  testing::AssertionResult openerGot(const std::string& lines) const {
    std::string text;
    if (test::eventually([&] {
          text = access(opened().c_str(), F_OK) == 0 ? test::readFile(opened()) : std::string();
          return text == lines;
        })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "it got " << text;
  }
  bool openerWasStarted() const { return access(opened().c_str(), F_OK) == 0; }

  test::FakePrograms programs_;
  test::TempDirectory folder_;
  test::PostedTasks tasks_;
  int told_ = 0;
  std::string missing_;
  ItemOpener opener_{tasks_.post()};
};

TEST_F(FolderOpeningTest, StartsTheOpenerWhereFoldersOpenWithAnother) {
  associations("echo files.desktop");
  open(folder_.path());
  EXPECT_TRUE(openerGot(folder_.path() + "\n"));
  EXPECT_EQ(told_, 0);
}

TEST_F(FolderOpeningTest, GoesToTheFileManagerWhereFoldersWouldComeBack) {
  associations("echo heapgauge.desktop");
  fileManager("printf '%s\\n' \"$@\" > " + programs_ / "asked" + "; echo method return");
  open(folder_.path());
  EXPECT_NE(test::readFile(programs_ / "asked").find("ShowFolders\n"), std::string::npos);
  EXPECT_EQ(told_, 0);
  EXPECT_FALSE(openerWasStarted());
}

TEST_F(FolderOpeningTest, GoesToTheFileManagerWhereOneSaysThatFoldersWouldComeBack) {
  associations("echo files.desktop");
  glibAssociations("echo 'Default application: heapgauge.desktop'; echo others");
  fileManager("echo method return");
  open(folder_.path());
  EXPECT_EQ(told_, 0);
  EXPECT_FALSE(openerWasStarted());
  fileManager("exit 1");
  open(folder_.path());
  EXPECT_EQ(told_, 1);
  EXPECT_FALSE(openerWasStarted());
}

TEST_F(FolderOpeningTest, HasTheFileManagerTryFirstWhereNobodyKnows) {
  associations("exit 1");
  fileManager("echo method return");
  open(folder_.path());
  EXPECT_FALSE(openerWasStarted());
  const std::string other = folder_ / "other";
  test::makeDirectory(other);
  fileManager("exit 1");
  open(other);
  EXPECT_TRUE(openerGot(other + "\n"));
  EXPECT_EQ(told_, 0);
}

TEST_F(FolderOpeningTest, FailsWhereItCannotFindOutWhetherItIsAFolder) {
  int failed = 0;
  opener_.onFailed = [&] { ++failed; };
  {
    const test::FewThreads none(0);
    opener_.open(folder_.path());
    EXPECT_EQ(failed, 1);
    opener_.open("https://heapgauge.example/");
  }
  EXPECT_TRUE(openerGot("https://heapgauge.example/\n")) << "an address is no folder";
  EXPECT_EQ(failed, 1);
  EXPECT_EQ(tasks_.count(), 0u);
}

TEST_F(FolderOpeningTest, TellsWhereFoldersWouldComeBackAndNobodyElseOpensThem) {
  associations("echo heapgauge.desktop");
  open(folder_.path());
  EXPECT_EQ(told_, 1);
  EXPECT_EQ(missing_, "");
  EXPECT_FALSE(openerWasStarted());
  open(folder_.path());
  EXPECT_EQ(told_, 2) << "asked for again";
}

TEST_F(FolderOpeningTest, TakesALinkToAFolderForOne) {
  associations("echo heapgauge.desktop");
  const std::string link = programs_ / "link";
  ASSERT_EQ(symlink(folder_.path().c_str(), link.c_str()), 0);
  open(link);
  EXPECT_EQ(told_, 1);
  EXPECT_FALSE(openerWasStarted());
}

TEST_F(FolderOpeningTest, AsksNobodyAboutAFileOrAnAddress) {
  associations("echo x >> " + programs_ / "asked" + "; echo heapgauge.desktop");
  const std::string file = folder_ / "file";
  test::writeFile(file);
  open(file);
  ASSERT_TRUE(openerGot(file + "\n"));
  open("https://heapgauge.example/");
  EXPECT_TRUE(openerGot(file + "\nhttps://heapgauge.example/\n"));
  EXPECT_NE(access((programs_ / "asked").c_str(), F_OK), 0);
}

TEST_F(FolderOpeningTest, OpensOnceWhatIsAskedForTwiceMeanwhile) {
  const std::string gate = programs_ / "gate";
  ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
  const base::FileDescriptor keeper(::open(gate.c_str(), O_RDWR | O_CLOEXEC));
  associations("read line < " + gate + "; echo files.desktop");
  const std::string other = folder_ / "other";
  test::makeDirectory(other);
  opener_.open(folder_.path());
  opener_.open(folder_.path());
  ASSERT_EQ(write(keeper.get(), "\n", 1), 1);
  ASSERT_TRUE(runTask());
  EXPECT_TRUE(openerGot(folder_.path() + "\n"));
  opener_.open(other);
  ASSERT_EQ(write(keeper.get(), "\n", 1), 1);
  ASSERT_TRUE(runTask());
  EXPECT_TRUE(openerGot(folder_.path() + "\n" + other + "\n"));
  EXPECT_EQ(tasks_.count(), 0u);
}

// Also who does not listen to the signal, and waits for a program of its own.
TEST_F(FolderOpeningTest, StartsTheOpenerWhereTheAnswerNeverComesAndNoFileManagerDoes) {
  useTimeLimits(TimeLimits::Real);
  fileManager("echo > " + programs_ / "tried" + "; exit 1");
  associations("trap '' TERM; echo $$ > " + programs_ / "asked" + "; sleep 1000; sleep 1000");
  const auto start = std::chrono::steady_clock::now();
  opener_.open(folder_.path());
  ASSERT_TRUE(runTask());
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_TRUE(openerGot(folder_.path() + "\n"));
  EXPECT_EQ(access((programs_ / "tried").c_str(), F_OK), 0) << "before the opener";
  const pid_t asked = std::atoi(test::readFile(programs_ / "asked").c_str());
  ASSERT_GT(asked, 0);
  EXPECT_TRUE(test::eventually([&] { return kill(asked, 0) != 0; })) << "it still runs";
}

TEST_F(FolderOpeningTest, EndsWhileAnAnswerIsOwed) {
  test::PostedTasks tasks;
  const std::string gate = programs_ / "gate";
  ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
  const base::FileDescriptor keeper(::open(gate.c_str(), O_RDWR | O_CLOEXEC));
  associations("read line < " + gate + "; echo > " + programs_ / "answered");
  ItemOpener(tasks.post()).open(folder_.path());
  ASSERT_EQ(write(keeper.get(), "\n", 1), 1);
  EXPECT_TRUE(
      test::eventually([&] { return access((programs_ / "answered").c_str(), F_OK) == 0; }));
  // It looks at PATH, too, which is put back when the test ends.
  ASSERT_TRUE(
      base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20)));
  EXPECT_EQ(tasks.count(), 0u);
}

/// The desktop's real programs, in a session that has the program's own desktop entry and no other.
class RealAssociationsTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* program : {"xdg-mime", "xdg-open"}) {
      if (!isOnPath(program)) GTEST_SKIP() << program << " is not installed";
    }
    test::makeDirectory(applications());
    std::filesystem::copy_file(DESKTOP_ENTRY, applications() + "/heapgauge.desktop");
    environment_.set("XDG_DATA_DIRS", data_.path());
    environment_.set("XDG_CONFIG_DIRS", data_ / "no configuration");
    environment_.set("XDG_CURRENT_DESKTOP", "X-Generic");
    // Nobody connects to it; without one the opener looks for no graphical program.
    environment_.set("DISPLAY", "none");
    programs_.addRecorder("heapgauge");
    programs_.add(kBusSender, "exit 1");
    programs_.add("timeout", "shift 3; exec \"$@\"");  // a machine may stall
  }

  std::string applications() const { return data_ / "applications"; }
  /// Installs another program that opens folders.
  void addFileManager(const std::string& name) {
    programs_.addRecorder(name);
    test::writeFile(applications() + "/" + name + ".desktop",
                    "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + name +
                        " %f\nMimeType=inode/directory;\n");
  }
  /// As update-desktop-database does when they are installed.
  void writeDatabase(const std::string& entries) const {
    test::writeFile(applications() + "/mimeinfo.cache",
                    "[MIME Cache]\ninode/directory=" + entries + "\n");
  }
  /// What the user chose.
  static void writeChoice(const std::string& lines) {
    test::writeFile(std::string(std::getenv("XDG_CONFIG_HOME")) + "/mimeapps.list", lines + "\n");
  }
  /// Opens a folder, which ends with the message that no file manager is there.
  void openAFolderInVain() {
    test::PostedTasks tasks;
    int told = 0;
    ItemOpener opener(tasks.post());
    opener.onNoFileManager = [&] { ++told; };
    opener.open(data_.path());
    ASSERT_TRUE(test::eventually([&] { return tasks.runFirst(); }));
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(programs_.wasStarted("heapgauge"));
  }
  static std::string opensFolders() {
    return runCapture({"xdg-mime", "query", "default", "inode/directory"});
  }

  test::PrivateHome home_;
  test::TempDirectory data_;
  test::ScopedEnvironment environment_;
  test::FakePrograms programs_;
};

TEST_F(RealAssociationsTest, TheEntryIsListedForFoldersAndNotPutFirst) {
  EXPECT_EQ(opensFolders(), "") << "where it is the only one";
  test::writeFile(applications() + "/zz.desktop",
                  "[Desktop Entry]\nType=Application\nExec=zz %f\nMimeType=inode/directory;\n");
  EXPECT_EQ(opensFolders(), "zz.desktop\n") << "before another program";
}

TEST_F(RealAssociationsTest, AFolderDoesNotComeBack) {
  writeDatabase("heapgauge.desktop;");
  ASSERT_EQ(opensFolders(), "heapgauge.desktop\n");
  openAFolderInVain();
  // It would have.
  runCapture({kOpener, data_.path()});
  EXPECT_EQ(programs_.argumentsOf("heapgauge"), std::vector<std::string>{data_.path()});
}

/// Where the two that are asked differ, and desktops that go by the second would come back.
class DifferingAssociationsTest : public RealAssociationsTest {
 protected:
  void SetUp() override {
    RealAssociationsTest::SetUp();
    if (!IsSkipped() && !isOnPath(kGlibAssociations)) {
      GTEST_SKIP() << kGlibAssociations << " is not installed";
    }
  }
  void expectItWouldHaveComeBack() const {
    runCapture({kGlibAssociations, "open", data_.path()});
    EXPECT_EQ(programs_.argumentsOf("heapgauge"), std::vector<std::string>{data_.path()});
  }
};

TEST_F(DifferingAssociationsTest, AFolderDoesNotComeBackByAnAssociationThatWasAdded) {
  addFileManager("caja");
  writeDatabase("caja.desktop;heapgauge.desktop;");
  writeChoice("[Added Associations]\ninode/directory=heapgauge.desktop");
  ASSERT_EQ(opensFolders(), "caja.desktop\n");
  openAFolderInVain();
  expectItWouldHaveComeBack();
}

TEST_F(DifferingAssociationsTest, AFolderDoesNotComeBackByADefaultBehindOneThatIsGone) {
  addFileManager("nemo");
  writeDatabase("nemo.desktop;");
  writeChoice("[Default Applications]\ninode/directory=gone.desktop;heapgauge.desktop;");
  ASSERT_EQ(opensFolders(), "nemo.desktop\n");
  openAFolderInVain();
  expectItWouldHaveComeBack();
}

}  // namespace
}  // namespace app
