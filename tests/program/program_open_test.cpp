// What the built program does to open things, with stand-ins for the desktop's programs.

#include <gtest/gtest.h>

#include <string>

#include "tests/app/actions/fake_program.h"
#include "tests/program/program_run.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace {

using test::eventually;

class ProgramOpen : public testing::Test {
 protected:
  ProgramOpen() {
    programs_.addRecorder("xdg-open");
    programs_.add("gio", "echo 'Default application: files.desktop'");
    programs_.add("dbus-send", "exit 1");
    programs_.add("timeout", "shift 3; exec \"$@\"");  // a machine may stall
    test::writeFile(folder_ / "inner/file.txt", std::string(100'000, 'x'));
  }

  /// Has the first folder of the list opened by its menu.
  static void openTheFirstFolder(test::Running& program) {
    program.key(ui::key::kDown);
    program.key(ui::key::kMenu);
    program.key(ui::key::kDown);
    program.key(ui::key::kReturn);
  }
  /// On the ground of a short list.
  static bool comesTo(test::Running& program, unsigned long colour) {
    return eventually([&] { return program.pixel(250, 400) == colour; });
  }

  test::PrivateHome home_;
  test::FakePrograms programs_;
  test::TempDirectory folder_;
  const test::XServer server_{test::kPlainScreen};
};

TEST_F(ProgramOpen, OpensAFolder) {
  programs_.add("xdg-mime", "echo files.desktop");
  test::Running program({folder_.path()});
  ASSERT_TRUE(program.comesToTheEndOfItsScan());
  openTheFirstFolder(program);
  EXPECT_EQ(programs_.argumentsOf("xdg-open"), std::vector<std::string>{folder_ / "inner"});
  EXPECT_EQ(program.close(), 0);
}

TEST_F(ProgramOpen, TellsThatAFolderWouldComeBack) {
  programs_.add("xdg-mime", "echo heapgauge.desktop");
  test::Running program({folder_.path()});
  ASSERT_TRUE(program.comesToTheEndOfItsScan());
  openTheFirstFolder(program);
  EXPECT_TRUE(comesTo(program, test::kDimmed)) << "a dialog";
  program.key(ui::key::kEscape);
  EXPECT_TRUE(comesTo(program, test::kGround));
  EXPECT_FALSE(programs_.wasStarted("xdg-open"));
  EXPECT_EQ(program.close(), 0);
}

}  // namespace
