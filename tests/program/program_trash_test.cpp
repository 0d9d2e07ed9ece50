// Moving things to the trash with the built program, from the keys to what lies on disk afterwards.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/file_descriptor.h"
#include "base/file_lock.h"
#include "tests/program/program_run.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"
#include "ui/palette.h"

namespace {

namespace fs = std::filesystem;
using test::eventually;
using test::kDimmed;
using test::kGround;
using Names = std::vector<std::string>;

/// The ground of the kinds table below its one row, as it is and dimmed by a dialog.
constexpr int kBesideX = 250;
constexpr int kBesideY = 505;

/// A home with a folder in which three files lie, the largest first in the list.
class ProgramTrash : public testing::Test {
 protected:
  explicit ProgramTrash(const test::XServerOptions& options = test::kPlainScreen)
      : server_(options) {
    for (const char* name : {"a", "b", "c"}) {
      test::writeFile(folder_ + "/" + name,
                      std::string(static_cast<std::size_t>('d' - *name) * 100'000, 'x'));
    }
  }

  static Names namesIn(const std::string& folder) {
    Names names;
    if (!fs::exists(folder)) return names;
    for (const auto& entry : fs::directory_iterator(folder))
      names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
  }
  Names left() const { return namesIn(folder_); }
  Names trashed() const { return namesIn(trash_ + "/files"); }

  /// Waits until all files are seen, in the rows and on the map.
  static void awaitFiles(test::Running& program) {
    ASSERT_TRUE(program.comesToTheEndOfItsScan());
    constexpr unsigned long kMapBackground = 0x1C1C1E;
    ASSERT_TRUE(eventually([&] {
      const unsigned long seen = program.pixel(700, 300);
      return seen != 0 && seen != kGround && seen != kMapBackground;
    }));
  }
  /// Selects the rows of the first `count` files and has them wait.
  static void trashRows(test::Running& program, int count) {
    program.key(ui::key::kDown);
    for (int i = 1; i < count; ++i) {
      program.client().pressKey(kShift);
      program.key(ui::key::kDown);
      program.client().releaseKey(kShift);
    }
    program.key(ui::key::kDelete);
  }
  static bool asks(test::Running& program) {
    return eventually([&] { return program.pixel(kBesideX, kBesideY) == kDimmed; });
  }
  static bool goesOn(test::Running& program) {
    return eventually([&] { return program.pixel(kBesideX, kBesideY) == kGround; });
  }

  static constexpr unsigned long kShift = 0xFFE1;
  const test::XServer server_;
  test::PrivateHome home_;
  const std::string folder_ = home_.path() + "/folder";
  const std::string trash_ = home_.path() + "/.local/share/Trash";
};

TEST_F(ProgramTrash, MovesWhatIsLeftAloneAndNothingThatIsPutBack) {
  test::Running program({folder_});
  awaitFiles(program);
  const auto before = std::chrono::steady_clock::now();
  trashRows(program, 3);
  program.ctrlKey('z');  // one of them
  EXPECT_EQ(left(), (Names{"a", "b", "c"})) << "nothing is touched before its time";
  const auto two = [&] { return trashed().size() == 2; };
  EXPECT_TRUE(eventually(two) || eventually(two)) << "ten seconds, on a machine that may be busy";
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::seconds(9))
      << "also right after the start of the program";
  ASSERT_EQ(left().size(), 1u);
  Names everything = trashed();
  everything.push_back(left().front());
  std::ranges::sort(everything);
  EXPECT_EQ(everything, (Names{"a", "b", "c"}));
  for (const std::string& name : trashed()) {
    const std::string record = test::readFile(trash_ + "/info/" + name + ".trashinfo");
    EXPECT_NE(record.find("Path=" + folder_ + "/" + name + "\n"), std::string::npos) << record;
  }
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramTrash, DeletesByMenuAndAtOnceWhenToldTo) {
  test::Running program({folder_});
  awaitFiles(program);
  program.client().movePointer(500, 300);  // from where it will be seen to move on to the button
  program.key(ui::key::kDown);
  program.key(ui::key::kMenu);
  program.key(ui::key::kEnd);  // Move to Trash
  program.key(ui::key::kReturn);
  // Between the heading of the panel and its buttons, once it is there.
  constexpr int kHeadingY = 647;
  const unsigned long panel = ui::kLightPalette.window & 0xFFFFFF;
  ASSERT_TRUE(eventually([&] { return program.pixel(500, kHeadingY) == panel; }));
  EXPECT_EQ(left(), (Names{"a", "b", "c"}));
  const auto before = std::chrono::steady_clock::now();
  program.click(1042, kHeadingY);  // Delete Now
  ASSERT_TRUE(asks(program));
  program.key(ui::key::kTab);  // to Delete Them
  program.key(ui::key::kReturn);
  EXPECT_TRUE(eventually([&] { return trashed() == Names{"a"}; }));
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(9))
      << "without the rest of the countdown";
  EXPECT_EQ(left(), (Names{"b", "c"}));
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramTrash, AsksBeforeItClosesAndDeletesWhenToldTo) {
  test::Running program({folder_});
  awaitFiles(program);
  trashRows(program, 2);
  program.ctrlKey('q');
  ASSERT_TRUE(asks(program));
  EXPECT_EQ(left(), (Names{"a", "b", "c"}));
  program.key(ui::key::kReturn);  // Cancel
  ASSERT_TRUE(goesOn(program));
  program.ctrlKey('q');
  ASSERT_TRUE(asks(program));
  program.key(ui::key::kTab);  // round to the first button, Delete Them
  program.key(ui::key::kReturn);
  EXPECT_EQ(program.process().wait(), 0);
  EXPECT_EQ(left(), Names{"c"});
  EXPECT_EQ(trashed(), (Names{"a", "b"}));
}

TEST_F(ProgramTrash, LeavesEverythingWhereItIsWhenItIsKilled) {
  test::Running program({folder_});
  awaitFiles(program);
  trashRows(program, 3);
  program.ctrlKey('q');
  ASSERT_TRUE(asks(program)) << "they wait";
  ASSERT_EQ(kill(program.process().pid(), SIGKILL), 0);
  program.process().wait();
  EXPECT_EQ(left(), (Names{"a", "b", "c"}));
  EXPECT_EQ(trashed(), Names{});
}

/// The same on a server that goes away, as when the session ends.
class ProgramTrashLostServer : public ProgramTrash {
 protected:
  ProgramTrashLostServer() : ProgramTrash({.height = 960, .startedAnew = true}) {}

  void loseServer(test::Running& program) const { program.loseServer(server_); }
  static void expectToEndWithALine(test::Running& program) {
    EXPECT_EQ(program.process().wait(), 1);
    EXPECT_EQ(program.errors(), test::kLostServer);
  }
  Names records() const { return namesIn(trash_ + "/info"); }
};

TEST_F(ProgramTrashLostServer, LeavesWhatWaitsWhereItIs) {
  test::Running program({folder_});
  awaitFiles(program);
  trashRows(program, 3);
  program.ctrlKey('q');
  ASSERT_TRUE(asks(program)) << "they wait";
  program.key(ui::key::kReturn);  // Cancel
  ASSERT_TRUE(goesOn(program)) << "and their countdown runs";
  loseServer(program);
  expectToEndWithALine(program);
  EXPECT_EQ(left(), (Names{"a", "b", "c"}));
  EXPECT_EQ(trashed(), Names{});
  EXPECT_EQ(records(), Names{});
}

TEST_F(ProgramTrashLostServer, MovesToTheEndWhatItHasBegunToMove) {
  const std::string info = trash_ + "/info";
  test::makeDirectory(info);
  std::optional<base::FileLock> otherProgram(
      std::in_place, base::FileDescriptor(open(info.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
  ASSERT_TRUE(otherProgram->held());
  test::Running program({folder_});
  awaitFiles(program);
  trashRows(program, 2);
  program.ctrlKey('q');
  ASSERT_TRUE(asks(program));
  program.key(ui::key::kTab);  // to Delete Them
  program.key(ui::key::kReturn);
  ASSERT_TRUE(eventually([&] { return program.hasOpen(info); })) << "it waits with the first";
  loseServer(program);
  otherProgram.reset();
  expectToEndWithALine(program);
  EXPECT_EQ(left(), Names{"c"});
  EXPECT_EQ(trashed(), (Names{"a", "b"}));
  EXPECT_EQ(records(), (Names{"a.trashinfo", "b.trashinfo"}));
}

}  // namespace
