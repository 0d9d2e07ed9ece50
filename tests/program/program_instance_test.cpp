// Several starts of the built program on one X server: who opens a window and who hands over.

#include <gtest/gtest.h>
#include <signal.h>

#include <array>
#include <atomic>
#include <span>
#include <string>
#include <vector>

#include "tests/program/program_run.h"
#include "tests/program/request_proxy.h"
#include "tests/program/window_manager.h"
#include "tests/support/child.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/other_client.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"

namespace {

using test::Child;
using test::eventually;
using test::kPlainScreen;
using test::OtherClient;
using test::Outcome;
using test::Running;
using test::XServer;

constexpr char kSelection[] = "_HEAPGAUGE_INSTANCE";

// Numbers of requests in the X protocol.
constexpr char kChangeProperty = 18;
constexpr char kSendEvent = 25;

/// The path that a later start left on `window`.
std::string openPath(OtherClient& client, unsigned long window) {
  return client.textProperty(window, "_HEAPGAUGE_OPEN_PATH", "UTF8_STRING");
}

bool ownsSelection(OtherClient& client, unsigned long window) {
  return eventually([&] { return client.selectionOwner(kSelection) == window; });
}

bool isActive(OtherClient& client, unsigned long window) {
  return client.longProperty(client.root(), "_NET_ACTIVE_WINDOW") == std::vector{window};
}

/// The program running as the instance that later starts find.
struct FirstInstance : Running {
  explicit FirstInstance(const std::vector<std::string>& arguments = {}) : Running(arguments) {
    EXPECT_TRUE(ownsSelection(client(), window()));
  }
};

/// A process that is held up for the scope, as one that hangs.
class Stopped {
 public:
  explicit Stopped(pid_t pid) : pid_(pid) { kill(pid_, SIGSTOP); }
  ~Stopped() { kill(pid_, SIGCONT); }
  Stopped(const Stopped&) = delete;
  Stopped& operator=(const Stopped&) = delete;

 private:
  pid_t pid_;
};

/// A start that is to hand over.
void expectHandsOver(const std::vector<std::string>& arguments) {
  const Outcome second(arguments);
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.output, "");
  EXPECT_EQ(second.errors, "");
}

/// What the window manager is to get for `window`.
void expectActivation(OtherClient& listener, unsigned long window) {
  const auto message = listener.messageToRoot();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->window, window);
  EXPECT_EQ(message->type, "_NET_ACTIVE_WINDOW");
  EXPECT_EQ(message->format, 32);
  EXPECT_EQ(message->words, (std::array<long, 5>{2, 0, 0, 0, 0}));
  EXPECT_FALSE(listener.messageToRoot()) << "one message";
}

class ProgramInstance : public testing::Test {
 protected:
  test::PrivateHome home_;
  test::TempDirectory dir_;
  const XServer server_{kPlainScreen};
};

/// The test's own client in place of a running instance, and as the window manager.
class ProgramHandOver : public ProgramInstance {
 protected:
  void SetUp() override {
    owner_.takeSelection(kSelection);
    window_ = owner_.selectionOwner(kSelection);
    notified_.listenToRoot();
    redirected_.holdBackWindows();
  }
  std::string path() { return openPath(owner_, window_); }

  OtherClient owner_;
  OtherClient notified_;
  OtherClient redirected_;
  unsigned long window_ = 0;
};

TEST_F(ProgramHandOver, LeavesThePathByteForByte) {
  for (const std::string& path :
       {std::string("some/../folder"), dir_ / "a\nb \xFF\xC3", dir_.path()}) {
    expectHandsOver({path});
    EXPECT_EQ(this->path(), path);
  }
}

TEST_F(ProgramHandOver, LeavesTheLastOfTwoPaths) {
  expectHandsOver({"a", "-x", "b", ""});
  EXPECT_EQ(path(), "b");
}

TEST_F(ProgramHandOver, LeavesALongPath) {
  const std::string longest(100'000, 'x');
  expectHandsOver({longest});
  EXPECT_TRUE(path() == longest);
}

TEST_F(ProgramHandOver, LeavesNoPathWithoutOne) {
  expectHandsOver({});
  expectHandsOver({"--capture"});
  expectHandsOver({"--capture", ""});
  EXPECT_EQ(path(), "");
  expectHandsOver({"before"});
  expectHandsOver({});
  EXPECT_EQ(path(), "before");
}

TEST_F(ProgramHandOver, AsksTheWindowManagerOnceToActivateTheWindow) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{}, {"folder"}}) {
    expectHandsOver(arguments);
    expectActivation(notified_, window_);
    expectActivation(redirected_, window_);
  }
}

TEST_F(ProgramHandOver, IsNotForCaptures) {
  redirected_.ignoreRoot();
  const Outcome capture({dir_.path(), "--capture", dir_ / "f.ppm", "--capture-after", "0"});
  EXPECT_EQ(capture.status, 0);
  EXPECT_EQ(test::readFile(dir_ / "f.ppm").substr(0, 2), "P6");
  EXPECT_EQ(path(), "");
  EXPECT_FALSE(notified_.messageToRoot());
  EXPECT_EQ(owner_.selectionOwner(kSelection), window_) << "the capture took the selection";
}

TEST_F(ProgramHandOver, IsNotForVersionAndHelp) {
  EXPECT_EQ(Outcome({dir_.path(), "--version"}).output, "1.1.1\n");
  EXPECT_TRUE(Outcome({dir_.path(), "-h"}).output.starts_with("Heap Gauge 1.1.1\n"));
  EXPECT_EQ(path(), "");
  EXPECT_FALSE(notified_.messageToRoot());
}

TEST_F(ProgramHandOver, GoesToTheInstanceThatTookOverMeanwhile) {
  OtherClient next;
  std::atomic<bool> taken = false;
  const test::RequestProxy proxy([&](std::span<char> request) {
    if (request[0] == kSendEvent && !taken.exchange(true)) next.takeSelection(kSelection);
  });
  expectHandsOver({"folder"});
  EXPECT_TRUE(taken);
  EXPECT_EQ(openPath(owner_, owner_.selectionOwner(kSelection)), "folder");
}

TEST_F(ProgramInstance, ASecondStartLeavesItsPathOnTheFirstWindow) {
  FirstInstance first;
  expectHandsOver({dir_.path()});
  EXPECT_EQ(openPath(first.client(), first.window()), dir_.path());
  // Whatever the window makes of the path comes before its answer to the pointer.
  const auto menuButton = [&] { return first.client().screenPixel(first.window(), 1088, 20); };
  const unsigned long plain = menuButton();
  first.client().movePointer(1088, 20);
  EXPECT_TRUE(eventually([&] { return menuButton() != plain; }));
  EXPECT_EQ(first.title(), "Heap Gauge · 1.1.1") << "the path is not acted upon";
  EXPECT_EQ(first.close(), 0);
  EXPECT_EQ(first.errors(), "");
}

TEST_F(ProgramInstance, ASecondStartActivatesTheFirstWindow) {
  const test::WindowManager manager;
  FirstInstance first;
  OtherClient& client = first.client();
  const unsigned long other = client.showWindow();
  const std::vector<std::vector<std::string>> starts = {{}, {dir_.path()}};
  for (const auto& arguments : starts) {
    ASSERT_TRUE(eventually([&] {
      if (client.isViewable(other)) client.focus(other);
      return isActive(client, other);
    }));
    expectHandsOver(arguments);
    EXPECT_TRUE(eventually([&] { return isActive(client, first.window()); }));
  }
  EXPECT_EQ(openPath(client, first.window()), dir_.path());
}

TEST_F(ProgramInstance, ASecondStartBringsBackTheFirstWindowWhenItIsMinimized) {
  const test::WindowManager manager;
  FirstInstance first;
  OtherClient& client = first.client();
  client.minimize(first.window());
  ASSERT_TRUE(eventually([&] { return !client.isViewable(first.window()); }));
  expectHandsOver({});
  EXPECT_TRUE(eventually([&] { return client.isViewable(first.window()); }));
  EXPECT_TRUE(eventually([&] { return isActive(client, first.window()); }));
}

TEST_F(ProgramInstance, ASecondStartDoesNotWaitForAFirstThatHangs) {
  FirstInstance first;
  const Stopped hanging(first.process().pid());
  expectHandsOver({dir_.path()});
  EXPECT_EQ(openPath(first.client(), first.window()), dir_.path());
}

TEST_F(ProgramInstance, AStartOpensAWindowAfterTheFirstWasClosed) {
  EXPECT_EQ(FirstInstance().close(), 0);
  FirstInstance second;
  expectHandsOver({});
}

TEST_F(ProgramInstance, AStartOpensAWindowAfterTheFirstWasKilled) {
  {
    FirstInstance first;
    kill(first.process().pid(), SIGKILL);
    EXPECT_EQ(first.process().wait(), -1);
  }
  FirstInstance second;
  expectHandsOver({});
}

TEST_F(ProgramInstance, ACaptureIsNotFound) {
  Running capture({"--capture", dir_ / "f.ppm", "--capture-after", "inf"});
  // It keeps its window beside the instance that opens now.
  Child child(test::programWith({}));
  unsigned long owner = 0;
  EXPECT_TRUE(
      eventually([&] { return (owner = capture.client().selectionOwner(kSelection)) != 0; }));
  EXPECT_NE(owner, capture.window());
  EXPECT_FALSE(capture.process().exitStatus());
}

TEST_F(ProgramInstance, LacksItsValueForACaptureAndIsNone) {
  for (const char* option : {"--capture", "--capture-after"}) {
    FirstInstance instance({option});
    EXPECT_EQ(instance.title(), "Heap Gauge · 1.1.1");
    EXPECT_EQ(instance.close(), 0);
  }
}

TEST_F(ProgramInstance, IsAnotherOneOnEachDisplay) {
  FirstInstance first;
  const XServer otherServer(kPlainScreen);
  FirstInstance second;
  EXPECT_FALSE(first.process().exitStatus());
}

TEST_F(ProgramInstance, EndsWithStatus1WhenTheServerGivesItNoWindow) {
  const test::RequestProxy windowless(test::spoilWindows);
  const Outcome run({dir_.path()});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "Could not create the window.\n");
}

/// The first instance ends right before a request of the given kind reaches the server.
class ProgramInstanceLost : public ProgramInstance {
 protected:
  void expectNormalStart(char request, const std::vector<std::string>& arguments) {
    OtherClient client;
    OtherClient first;
    first.takeSelection(kSelection);
    const unsigned long window = first.selectionOwner(kSelection);
    std::atomic<bool> lost = false;
    const test::RequestProxy proxy([&](std::span<char> sent) {
      if (sent[0] == request && !lost.exchange(true)) first.destroyWindow(window);
    });
    const Child second(test::programWith(arguments), "/dev/null", "/dev/null", dir_ / "errors");
    EXPECT_TRUE(ownsSelection(client, client.shownWindow("Heapgauge")));
    EXPECT_TRUE(lost);
    EXPECT_EQ(test::readFile(dir_ / "errors"), "");
  }
};

TEST_F(ProgramInstanceLost, BeforeItGotThePath) {
  expectNormalStart(kChangeProperty, {dir_.path()});
}

TEST_F(ProgramInstanceLost, BeforeItIsActivated) { expectNormalStart(kSendEvent, {}); }

}  // namespace
