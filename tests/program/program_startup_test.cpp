// What the built program tells the launcher that started it, which shows a busy pointer meanwhile.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/program/program_run.h"
#include "tests/program/request_proxy.h"
#include "tests/program/window_manager.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/other_client.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace {

using test::eventually;
using test::kGround;
using test::kPlainScreen;
using test::Outcome;
using test::Running;
using test::XServer;
using Texts = std::vector<std::string>;

constexpr char kStart[] = "launcher/heapgauge/7-table_TIME4242";
constexpr char kStartEnd[] = "remove: ID=\"launcher/heapgauge/7-table_TIME4242\"";

/// The desktop, which listens to all that programs it has started say.
class Desktop {
 public:
  explicit Desktop(const std::string& id = kStart) {
    environment_.set("DESKTOP_STARTUP_ID", id);
    environment_.set("XDG_ACTIVATION_TOKEN", "token");
    client_.listenToStarts();
  }
  /// Those messages that have come to their end.
  const Texts& told() {
    while (const auto part = client_.messageToRoot()) {
      if (part->type == "_NET_STARTUP_INFO_BEGIN") unfinished_.clear();
      unfinished_ += part->bytes;
      const std::size_t end = unfinished_.find('\0');
      if (end != std::string::npos) told_.push_back(unfinished_.substr(0, end));
    }
    return told_;
  }
  bool isToldOfTheEnd() {
    return eventually([&] { return !told().empty(); }) && told() == Texts{kStartEnd};
  }

 private:
  test::ScopedEnvironment environment_;
  test::OtherClient client_;
  std::string unfinished_;
  Texts told_;
};

class ProgramStartup : public testing::Test {
 protected:
  test::PrivateHome home_;
  test::TempDirectory dir_;
};

TEST_F(ProgramStartup, EndsWhenTheWindowIsSeen) {
  const XServer server(kPlainScreen);
  Desktop desktop;
  Running program;
  EXPECT_TRUE(desktop.isToldOfTheEnd());
  EXPECT_EQ(program.pixel(5, 700), kGround);
  test::OtherClient& client = program.client();
  EXPECT_EQ(client.textProperty(program.window(), "_NET_STARTUP_ID", "UTF8_STRING"), kStart);
  EXPECT_EQ(client.longProperty(program.window(), "_NET_WM_USER_TIME"),
            std::vector<unsigned long>{4242});
  EXPECT_EQ(program.close(), 0);
  EXPECT_EQ(program.errors(), "");
  EXPECT_EQ(desktop.told(), Texts{kStartEnd}) << "once";
}

TEST_F(ProgramStartup, EndsUnderAWindowManager) {
  const XServer server(kPlainScreen);
  const test::WindowManager manager;
  Desktop desktop;
  Running program;
  EXPECT_TRUE(desktop.isToldOfTheEnd());
  EXPECT_EQ(program.close(), 0);
  EXPECT_EQ(desktop.told(), Texts{kStartEnd}) << "once";
}

TEST_F(ProgramStartup, EndsThoughTheWindowIsNotShown) {
  const XServer server(kPlainScreen);
  test::OtherClient manager;
  manager.holdBackWindows();
  Desktop desktop;
  const test::Child program(test::programWith({}));
  EXPECT_TRUE(desktop.isToldOfTheEnd());
}

TEST_F(ProgramStartup, EndsWhenAnotherInstanceTakesOver) {
  const XServer server(kPlainScreen);
  Running first;
  const auto isFound = [&] {
    return first.client().selectionOwner("_HEAPGAUGE_INSTANCE") == first.window();
  };
  ASSERT_TRUE(eventually(isFound));
  Desktop desktop;
  EXPECT_EQ(Outcome({dir_.path()}).status, 0);
  EXPECT_TRUE(desktop.isToldOfTheEnd());
}

TEST_F(ProgramStartup, EndsWithACapture) {
  const XServer server(kPlainScreen);
  Desktop desktop;
  EXPECT_EQ(Outcome({"--capture", dir_ / "f.ppm", "--capture-after", "0"}).errors, "");
  EXPECT_TRUE(desktop.isToldOfTheEnd());
}

TEST_F(ProgramStartup, EndsWhenThereIsNoWindowToBeHad) {
  const XServer server(kPlainScreen);
  Desktop desktop;
  const test::RequestProxy windowless(test::spoilWindows);
  const Outcome run({});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "Could not create the window.\n");
  EXPECT_TRUE(desktop.isToldOfTheEnd());
}

TEST_F(ProgramStartup, EndsWhenTheScreenHasTooFewColours) {
  const XServer server({.depth = 16});
  Desktop desktop;
  EXPECT_EQ(Outcome({}).status, 1);
  EXPECT_TRUE(desktop.isToldOfTheEnd());
}

TEST_F(ProgramStartup, EndsWhoeverTheLauncherIs) {
  const XServer server(kPlainScreen);
  const Texts names = {"blanks and \"quotes\"", "back\\slash", "line\nfeed", "Bücher_TIMEx"};
  const Texts ends = {R"(remove: ID="blanks and \"quotes\"")", R"(remove: ID="back\\slash")",
                      "remove: ID=\"line\nfeed\"", "remove: ID=\"Bücher_TIMEx\""};
  for (std::size_t i = 0; i < names.size(); ++i) {
    Desktop desktop(names[i]);
    Running program;
    EXPECT_TRUE(eventually([&] { return desktop.told() == Texts{ends[i]}; })) << names[i];
    EXPECT_EQ(program.close(), 0);
    EXPECT_EQ(program.errors(), "");
  }
}

TEST_F(ProgramStartup, IsNobodysWhereTheNameIsNone) {
  const XServer server(kPlainScreen);
  for (const std::string& name : {std::string(), std::string("\xFF\xFE"), std::string(5000, 'x')}) {
    Desktop desktop(name);
    Running program;
    EXPECT_EQ(program.client().textProperty(program.window(), "_NET_STARTUP_ID", "UTF8_STRING"),
              "");
    EXPECT_EQ(program.close(), 0);
    EXPECT_EQ(program.errors(), "");
    EXPECT_EQ(desktop.told(), Texts{});
  }
}

TEST_F(ProgramStartup, IsNotForTheProgramsThatItStartsItself) {
  const XServer server(kPlainScreen);
  test::writeFile(dir_ / "scanned/file", std::string(1000, 'x'));
  test::TempDirectory tools;
  const std::string tool = tools / "xdg-open";
  const std::string seen = dir_ / "environment";
  test::writeFile(tool, "#!/bin/sh\nenv >'" + seen + ".new'; mv '" + seen + ".new' '" + seen + "'");
  std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
  test::ScopedEnvironment environment;
  environment.set("PATH", tools.path() + ":" + std::getenv("PATH"));
  const Desktop desktop;
  Running program({dir_ / "scanned"});
  ASSERT_TRUE(program.comesToTheEndOfItsScan());
  program.key(ui::key::kDown);
  program.key(ui::key::kMenu);
  program.key(ui::key::kDown);  // Open
  program.key(ui::key::kReturn);
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(seen); }));
  const std::string variables = test::readFile(seen);
  EXPECT_NE(variables.find("\nPATH="), std::string::npos) << variables;
  EXPECT_EQ(variables.find("DESKTOP_STARTUP_ID"), std::string::npos) << variables;
  EXPECT_EQ(variables.find("XDG_ACTIVATION_TOKEN"), std::string::npos) << variables;
}

}  // namespace
