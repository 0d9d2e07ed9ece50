#include "app/actions/desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/actions/process.h"
#include "tests/app/actions/fake_program.h"

namespace app {
namespace {

using Command = std::vector<std::string>;

/// Stands for `spawnDetached` and says what it is told to.
struct FakeStarter {
  std::vector<bool> outcomes;
  std::vector<Command> commands = {};

  Starter starter() {
    return [this](const Command& command) {
      commands.push_back(command);
      return static_cast<bool>(outcomes.at(commands.size() - 1));
    };
  }
};

Command showItems(const std::string& path) {
  return {"--session",
          "--print-reply",
          "--dest=org.freedesktop.FileManager1",
          "--type=method_call",
          "/org/freedesktop/FileManager1",
          "org.freedesktop.FileManager1.ShowItems",
          "array:string:file://" + path,
          "string:"};
}

TEST(OpenWithDefaultApp, StartsTheDesktopsOpenerWithThePath) {
  test::FakePrograms programs;
  programs.addRecorder("xdg-open");
  EXPECT_TRUE(openWithDefaultApp("/a folder/it's \"\xff\"\n.txt"));
  EXPECT_EQ(programs.argumentsOf("xdg-open"), Command{"/a folder/it's \"\xff\"\n.txt"});
}

TEST(OpenWithDefaultApp, DoesNothingForNoPath) {
  test::FakePrograms programs;
  programs.addRecorder("xdg-open");
  EXPECT_FALSE(openWithDefaultApp(""));
  EXPECT_FALSE(programs.wasStarted("xdg-open"));
}

TEST(OpenWithDefaultApp, ReportsTheStartAloneWhenThereIsNoOpener) {
  const test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  EXPECT_FALSE(isOnPath(kOpener));
  EXPECT_TRUE(openWithDefaultApp("/a"));
}

TEST(ShowInFileManager, AsksTheFileManagerOnTheSessionBus) {
  test::FakePrograms programs;
  programs.addRecorder("dbus-send");
  EXPECT_TRUE(showInFileManager("/home/u/a"));
  EXPECT_EQ(programs.argumentsOf("dbus-send"), showItems("/home/u/a"));
}

TEST(ShowInFileManager, HandsThePathOnAsHeld) {
  test::FakePrograms programs;
  programs.addRecorder("dbus-send");
  const std::string path = "/a b/#1 100%\xc3\xa9,\xff";
  EXPECT_TRUE(showInFileManager(path));
  EXPECT_EQ(programs.argumentsOf("dbus-send"), showItems(path));
}

TEST(ShowInFileManager, DoesNothingForNoPath) {
  FakeStarter fake{{true, true}};
  EXPECT_FALSE(showInFileManager("", fake.starter()));
  EXPECT_TRUE(fake.commands.empty());
}

TEST(ShowInFileManager, LeavesItAtTheFirstThatStarts) {
  FakeStarter fake{{true}};
  EXPECT_TRUE(showInFileManager("/a", fake.starter()));
  ASSERT_EQ(fake.commands.size(), 1u);
  EXPECT_EQ(fake.commands[0].size(), 9u);
  EXPECT_EQ(fake.commands[0][0], "dbus-send");
  EXPECT_EQ(fake.commands[0][7], "array:string:file:///a");
}

TEST(ShowInFileManager, OpensTheFolderWhenNothingStarts) {
  const std::vector<std::pair<std::string, std::string>> folders = {
      {"/a", "/"}, {"/a/b c/d", "/a/b c"}, {"name", "."}, {"/a/b/", "/a/b"}};
  for (const auto& [path, folder] : folders) {
    FakeStarter fake{{false, true}};
    EXPECT_TRUE(showInFileManager(path, fake.starter()));
    ASSERT_EQ(fake.commands.size(), 2u);
    EXPECT_EQ(fake.commands[1], (Command{"xdg-open", folder}));
  }
}

TEST(ShowInFileManager, FailsWhenNeitherStarts) {
  FakeStarter fake{{false, false}};
  EXPECT_FALSE(showInFileManager("/a", fake.starter()));
}

/// Has those who know what folders open with answer so, and take as long as they take.
void openFoldersWith(test::FakePrograms& programs, const std::string& entry,
                     const std::string& glibLine) {
  programs.add("timeout", "shift 3; exec \"$@\"");
  programs.add(kAssociations,
               "[ \"$*\" = 'query default inode/directory' ] && printf '%s\\n' '" + entry + "'");
  programs.add(kGlibAssociations, "[ \"$*\" = 'mime inode/directory' ] && printf '%s\\n' '" +
                                      glibLine + "' Registered: '\theapgauge.desktop'");
}

TEST(ProgramForFolders, KnowsTheProgramsOwnEntry) {
  test::FakePrograms programs;
  for (const char* own : {"heapgauge.desktop", "example.heapgauge.heapgauge.desktop"}) {
    openFoldersWith(programs, own, "Default application: files.desktop");
    EXPECT_EQ(programForFolders(), FolderProgram::Own) << own;
    openFoldersWith(programs, "files.desktop", std::string("Default application: ") + own);
    EXPECT_EQ(programForFolders(), FolderProgram::Own) << own;
  }
  for (const char* other : {"files.desktop", "heapgauge.desktop.files.desktop"}) {
    openFoldersWith(programs, other, std::string("Default application: ") + other);
    EXPECT_EQ(programForFolders(), FolderProgram::Another) << other;
  }
  openFoldersWith(programs, "files.desktop", "No default applications");
  EXPECT_EQ(programForFolders(), FolderProgram::Another);
}

TEST(ProgramForFolders, GoesByTheOneThatAnswers) {
  test::FakePrograms programs;
  const std::string files = "Default application: files.desktop";
  openFoldersWith(programs, "", files);
  EXPECT_EQ(programForFolders(), FolderProgram::Unknown);
  openFoldersWith(programs, "", "Default application: heapgauge.desktop");
  EXPECT_EQ(programForFolders(), FolderProgram::Own);
  openFoldersWith(programs, "files.desktop", files);
  programs.add(kGlibAssociations, "exit 1");
  EXPECT_EQ(programForFolders(), FolderProgram::Unknown);
  openFoldersWith(programs, "heapgauge.desktop", files);
  programs.add(kGlibAssociations, "exit 1");
  EXPECT_EQ(programForFolders(), FolderProgram::Own);
}

TEST(ProgramForFolders, NeedsOnlyOneToAsk) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  programs.add("timeout", "shift 3; exec \"$@\"");
  programs.add(kAssociations, "echo files.desktop");
  EXPECT_EQ(programForFolders(), FolderProgram::Another);
}

TEST(ProgramForFolders, IsUnknownWhereNobodyKnows) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  programs.add(kAssociations, "echo files.desktop");
  EXPECT_EQ(programForFolders(), FolderProgram::Unknown) << "no tool that bounds the time";
  programs.add("timeout", "shift 3; exec \"$@\"");
  ASSERT_EQ(programForFolders(), FolderProgram::Another);
  programs.add(kAssociations, "echo heapgauge.desktop; exit 4");
  EXPECT_EQ(programForFolders(), FolderProgram::Unknown) << "who was asked failed";
}

TEST(ProgramForFolders, IsUnknownWhereNobodyIsThereToAsk) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  programs.add("timeout", "shift 3; exec \"$@\"");
  EXPECT_EQ(programForFolders(), FolderProgram::Unknown);
}

TEST(OpenInFileManager, AsksTheFileManagerOnTheSessionBus) {
  test::FakePrograms programs;
  programs.addRecorder("dbus-send");
  EXPECT_FALSE(openInFileManager("/a b,c/#1 100%\xc3\xa9\xff~")) << "no reply";
  EXPECT_EQ(programs.argumentsOf("dbus-send"),
            (Command{"--session", "--print-reply", "--dest=org.freedesktop.FileManager1",
                     "--type=method_call", "/org/freedesktop/FileManager1",
                     "org.freedesktop.FileManager1.ShowFolders",
                     "array:string:file:///a%20b%2Cc/%231%20100%25%C3%A9%FF~", "string:"}));
}

TEST(OpenInFileManager, NeedsNoToolThatBoundsTheTime) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  programs.add("dbus-send", "echo 'method return time=1.5 sender=:1.7'");
  EXPECT_TRUE(openInFileManager("/a"));
}

TEST(OpenInFileManager, KnowsAReplyFromAnError) {
  test::FakePrograms programs;
  programs.add("dbus-send", "echo 'method return time=1.5 sender=:1.7'");
  EXPECT_TRUE(openInFileManager("/a"));
  programs.add("dbus-send", "echo 'Error ServiceUnknown' >&2; exit 1");
  EXPECT_FALSE(openInFileManager("/a"));
}

}  // namespace
}  // namespace app
