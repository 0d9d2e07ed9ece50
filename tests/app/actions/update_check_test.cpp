#include "app/actions/update_check.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/model/settings.h"
#include "base/file_descriptor.h"
#include "base/mutex.h"
#include "tests/app/actions/fake_program.h"
#include "tests/app/actions/update_server.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/waiting_thread.h"

namespace app {
namespace {

const std::string kUpdate =
    R"({"latest":{"version":"1.2.0"},"downloads":"https://a.example/","currentDate":"2025-01-31"})";

/// Updates that a callback was told of.
class Told {
 public:
  UpdateCheck::Callback callback() {
    return [this](const UpdateAvailable& update) {
      const base::MutexLock lock(mutex_);
      versions_.push_back(update.version);
    };
  }
  std::vector<std::string> versions() {
    const base::MutexLock lock(mutex_);
    return versions_;
  }

 private:
  base::Mutex mutex_;  // guards versions_
  std::vector<std::string> versions_ GUARDED_BY(mutex_);
};

/// A check whose program is a stand-in that notes each start, and answers at the test's word.
class UpdateCheckTest : public testing::Test {
 protected:
  UpdateCheckTest() {
    environment_.set("HEAPGAUGE_UPDATE_URL", "http://127.0.0.1:9/");
    EXPECT_EQ(mkfifo(gatePath().c_str(), 0600), 0);
    gate_ = base::FileDescriptor(open(gatePath().c_str(), O_RDWR | O_CLOEXEC));
    answerWith(kUpdate);
    programs_.add("curl", "echo x >> " + startsPath() + "; read line < " + gatePath() +
                              "; read -r answer < " + (programs_ / "answer") +
                              "; echo \"$answer\"");
  }
  ~UpdateCheckTest() override {
    // What goes away now is read by nobody any more.
    letAnswer();
    EXPECT_TRUE(test::eventually([&] { return !asks(); }));
  }

  void answerWith(const std::string& answer) const {
    test::writeFile(programs_ / "answer", answer + "\n");
  }
  /// Has the program answer, which waits for this or will.
  void letAnswer() const { EXPECT_EQ(write(gate_.get(), "\n", 1), 1); }
  /// Whether a thread asks the server: from the call that starts it on, until the program has
  /// answered and the thread ended.
  bool asks() const { return threads() > threadsBefore_; }
  bool hasStarted() const {
    return test::eventually([&] { return starts() > 0; });
  }
  std::size_t starts() const {
    struct stat status {};
    return stat(startsPath().c_str(), &status) == 0 ? static_cast<std::size_t>(status.st_size) / 2
                                                    : 0;
  }
  void want(bool updates) { settings.setBool(setting::kCheckForUpdates.key, updates); }
  std::string flatpakInfo() const { return programs_ / "flatpak-info"; }

  test::PrivateHome home;
  SettingsStore settings{{}};
  Told told;

 private:
  static std::ptrdiff_t threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
  }
  std::string gatePath() const { return programs_ / "gate"; }
  std::string startsPath() const { return programs_ / "starts"; }

  test::ScopedEnvironment environment_;
  test::FakePrograms programs_{test::FakePrograms::RestOfPath::Hidden};
  base::FileDescriptor gate_;
  const std::ptrdiff_t threadsBefore_ = threads();
};

TEST_F(UpdateCheckTest, TellsOfAnUpdate) {
  UpdateCheck check(settings, flatpakInfo());
  check.check(told.callback());
  EXPECT_FALSE(check.available());
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return !told.versions().empty(); }));
  EXPECT_EQ(told.versions(), std::vector<std::string>{"1.2.0"});
  ASSERT_TRUE(check.available());
  EXPECT_EQ(check.available()->version, "1.2.0");
  EXPECT_EQ(check.available()->downloads, "https://a.example/");
  EXPECT_EQ(check.available()->currentDate, "2025-01-31");
}

TEST_F(UpdateCheckTest, ReturnsWhileTheServerIsAsked) {
  UpdateCheck check(settings, flatpakInfo());
  check.check(told.callback());
  ASSERT_TRUE(hasStarted());
  EXPECT_TRUE(told.versions().empty());
  letAnswer();
  EXPECT_TRUE(test::eventually([&] { return !told.versions().empty(); }));
}

TEST_F(UpdateCheckTest, TellsTheLastCallbackAlone) {
  UpdateCheck check(settings, flatpakInfo());
  Told replaced;
  check.check(replaced.callback());
  ASSERT_TRUE(hasStarted());
  check.check(told.callback());
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return !told.versions().empty(); }));
  EXPECT_TRUE(replaced.versions().empty());
}

TEST_F(UpdateCheckTest, TellsAtOnceOfAKnownUpdate) {
  UpdateCheck check(settings, flatpakInfo());
  check.check(told.callback());
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return !told.versions().empty(); }));
  Told later;
  check.check(later.callback());
  EXPECT_EQ(later.versions(), std::vector<std::string>{"1.2.0"});
  EXPECT_EQ(told.versions().size(), 1u);
  EXPECT_EQ(starts(), 1u);
}

TEST_F(UpdateCheckTest, AsksOnceInARun) {
  UpdateCheck check(settings, flatpakInfo());
  answerWith("{}");
  check.check(told.callback());
  check.check(told.callback());
  EXPECT_FALSE(check.finished());
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return check.finished(); }));
  ASSERT_TRUE(test::eventually([&] { return !asks(); }));
  check.check(told.callback());
  EXPECT_FALSE(asks());
  EXPECT_EQ(starts(), 1u);
}

TEST_F(UpdateCheckTest, AsksNobodyWhileTheUserDoesNotWantIt) {
  want(false);
  UpdateCheck check(settings, flatpakInfo());
  check.check(told.callback());
  EXPECT_FALSE(asks());
  want(true);
  check.check(told.callback());
  EXPECT_TRUE(asks());
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return !told.versions().empty(); }));
  EXPECT_EQ(starts(), 1u);
}

TEST_F(UpdateCheckTest, AsksNobodyInsideFlatpak) {
  test::writeFile(flatpakInfo());
  UpdateCheck check(settings, flatpakInfo());
  check.check(told.callback());
  EXPECT_FALSE(asks());
  ASSERT_EQ(unlink(flatpakInfo().c_str()), 0);
  check.check(told.callback());
  EXPECT_TRUE(asks());
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return !told.versions().empty(); }));
  EXPECT_EQ(starts(), 1u);
}

TEST(UpdateCheck, KnowsFlatpakByItsFile) { EXPECT_STREQ(kFlatpakInfo, "/.flatpak-info"); }

TEST_F(UpdateCheckTest, EndsWithoutWaitingForTheProgram) {
  auto check = std::make_unique<UpdateCheck>(settings, flatpakInfo());
  check->check(told.callback());
  ASSERT_TRUE(hasStarted());
  check.reset();  // while the program waits for its answer, without end
  letAnswer();
  EXPECT_TRUE(told.versions().empty());
}

TEST_F(UpdateCheckTest, ForgetsItsCallback) {
  UpdateCheck check(settings, flatpakInfo());
  check.check(told.callback());
  ASSERT_TRUE(hasStarted());
  check.forgetCallback();
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return check.available().has_value(); }));
  check.forgetCallback();  // the thread is past it
  EXPECT_TRUE(told.versions().empty());
  check.check(told.callback());
  EXPECT_EQ(told.versions().size(), 1u);
}

TEST_F(UpdateCheckTest, WaitsForACallOfTheCallbackThatItForgets) {
  UpdateCheck check(settings, flatpakInfo());
  const pid_t thisThread = gettid();
  std::atomic<bool> began = false;
  std::atomic<bool> forgets = false;
  std::atomic<bool> ended = false;
  check.check([&](const UpdateAvailable&) {
    began = true;
    EXPECT_TRUE(test::eventually([&] { return forgets && test::waits(thisThread); }));
    ended = true;
  });
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return began.load(); }));
  forgets = true;
  check.forgetCallback();
  EXPECT_TRUE(ended);
}

TEST_F(UpdateCheckTest, HasNoUpdateWhileTheUserDoesNotWantAny) {
  UpdateCheck check(settings, flatpakInfo());
  check.check(told.callback());
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return check.available().has_value(); }));
  want(false);
  EXPECT_FALSE(check.available());
  want(true);
  EXPECT_TRUE(check.available());
}

TEST_F(UpdateCheckTest, DoesWithoutACallback) {
  UpdateCheck check(settings, flatpakInfo());
  check.check(nullptr);
  letAnswer();
  ASSERT_TRUE(test::eventually([&] { return check.available().has_value(); }));
  check.check(nullptr);
}

/// A check of a real server, by real programs.
class UpdateCheckOfAServer : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* program : {"curl", "wget", "python3"}) {
      if (test::programOnPath(program).empty()) GTEST_SKIP() << program << " is not installed";
    }
    if (access(kFlatpakInfo, F_OK) == 0) GTEST_SKIP() << "runs inside Flatpak";
    server.emplace(kUpdate);
  }

  /// The version that the user is told of when the server is asked for `path`; "-" for none.
  std::string toldOf(const std::string& path) {
    environment.set("HEAPGAUGE_UPDATE_URL", server->address(path));
    const SettingsStore settings({});
    Told told;
    UpdateCheck check(settings);
    check.check(told.callback());
    EXPECT_TRUE(test::eventually([&] { return check.finished(); }));
    check.forgetCallback();
    return told.versions().empty() ? "-" : told.versions().front();
  }
  std::string toldOfAnswer(const std::string& answer) {
    server->setAnswer(answer);
    return toldOf("answer");
  }

  test::ScopedEnvironment environment;
  std::optional<test::UpdateServer> server;
};

TEST_F(UpdateCheckOfAServer, TellsOfAnUpdate) {
  EXPECT_EQ(toldOf("answer"), "1.2.0");
  ASSERT_EQ(server->requests().size(), 1u);
  EXPECT_TRUE(server->requests()[0].starts_with("/answer?platform=linux&version=1.1.1\t"));
}

TEST_F(UpdateCheckOfAServer, TellsOfWhatTheServerCallsAnUpdate) {
  EXPECT_EQ(toldOfAnswer(R"({"updateAvailable":true,"latest":{"version":"1.0"}})"), "1.0");
}

TEST_F(UpdateCheckOfAServer, SaysNothingOfTheVersionThatRuns) {
  EXPECT_EQ(toldOfAnswer(R"({"latest":{"version":"1.1.1"}})"), "-");
}

TEST_F(UpdateCheckOfAServer, SaysNothingWhenItFails) {
  EXPECT_EQ(toldOf("status/404"), "-");
  EXPECT_EQ(toldOf("redirect/4"), "-");
  EXPECT_EQ(toldOf("cut"), "-");
  EXPECT_EQ(toldOfAnswer(""), "-");
  server->stop();
  EXPECT_EQ(toldOf("answer"), "-");
}

TEST_F(UpdateCheckOfAServer, SaysNothingOfAnAnswerThatItCannotRead) {
  EXPECT_EQ(toldOfAnswer(R"({"latest":{"version":"1.2.0"})"), "-");
  EXPECT_EQ(toldOfAnswer("<html>1.2.0</html>"), "-");
  EXPECT_EQ(toldOfAnswer(std::string(200'000, '[')), "-");
  EXPECT_EQ(toldOfAnswer(R"({"text":")" + std::string(3 * 1024 * 1024, 'x') +
                         R"(","latest":{"version":"1.2.0"}})"),
            "-");
}

}  // namespace
}  // namespace app
