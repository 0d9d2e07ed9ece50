#include "app/actions/update_request.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/app/actions/fake_program.h"
#include "tests/app/actions/update_server.h"
#include "tests/support/environment.h"

namespace app {
namespace {

using RestOfPath = test::FakePrograms::RestOfPath;
using Clock = std::chrono::steady_clock;

const std::string kAnswer = R"({"latest":{"version":"1.2.0"}})";
const std::string kAnyAddress = "http://a.example/b?platform=linux&version=1.1.1";

TEST(UpdateAddress, IsTheServersOfTheBuild) {
  test::ScopedEnvironment environment;
  environment.unset("HEAPGAUGE_UPDATE_URL");
  const std::string address = updateAddress();
  EXPECT_EQ(address, HEAPGAUGE_UPDATE_SERVER "/api/latest-version?platform=linux&version=1.1.1");
}

TEST(UpdateAddress, IsTheOneOfTheEnvironment) {
  test::ScopedEnvironment environment;
  environment.set("HEAPGAUGE_UPDATE_URL", "http://127.0.0.1:8080/some/where");
  EXPECT_EQ(updateAddress(), "http://127.0.0.1:8080/some/where?platform=linux&version=1.1.1");
  environment.set("HEAPGAUGE_UPDATE_URL", "http://a/?b");
  EXPECT_EQ(updateAddress(), "http://a/?b?platform=linux&version=1.1.1");
}

TEST(UpdateAddress, IsTheServersWhenTheEnvironmentHasAnEmptyOne) {
  test::ScopedEnvironment environment;
  environment.set("HEAPGAUGE_UPDATE_URL", "");
  EXPECT_TRUE(updateAddress().starts_with(HEAPGAUGE_UPDATE_SERVER "/api/"));
}

// --- with stand-ins for the programs ---

TEST(FetchUpdateAnswer, AsksCurlWithTheseArguments) {
  test::FakePrograms programs;
  programs.addRecorder("curl");
  programs.add("wget", "exit 1");
  fetchUpdateAnswer(kAnyAddress);
  EXPECT_EQ(
      programs.argumentsOf("curl"),
      (std::vector<std::string>{"--silent", "--show-error", "--fail", "--location", "--max-redirs",
                                "3", "--max-time", "10", "--user-agent", "Heapgauge/1.1.1 (linux)",
                                "--header", "Accept: application/json", kAnyAddress}));
}

TEST(FetchUpdateAnswer, AsksWgetWithTheseArguments) {
  test::FakePrograms programs;
  programs.add("curl", "exit 1");
  programs.addRecorder("wget");
  fetchUpdateAnswer(kAnyAddress);
  EXPECT_EQ(programs.argumentsOf("wget"),
            (std::vector<std::string>{"--quiet", "--output-document=-", "--timeout=10", "--tries=1",
                                      "--max-redirect=3", "--user-agent=Heapgauge/1.1.1 (linux)",
                                      "--header=Accept: application/json", kAnyAddress}));
}

TEST(FetchUpdateAnswer, LeavesWgetAloneWhenCurlHasTheAnswer) {
  test::FakePrograms programs;
  programs.add("curl", "echo from curl");
  programs.addRecorder("wget");
  EXPECT_EQ(fetchUpdateAnswer(kAnyAddress), "from curl\n");
  EXPECT_FALSE(programs.wasStarted("wget"));
}

TEST(FetchUpdateAnswer, AsksWgetWhenCurlBringsNothing) {
  test::FakePrograms programs;
  programs.add("wget", "echo from wget");
  for (const char* curl : {"exit 0", "exit 22", "echo half; exit 18", "echo half; kill -9 $$"}) {
    programs.add("curl", curl);
    EXPECT_EQ(fetchUpdateAnswer(kAnyAddress), "from wget\n") << curl;
  }
}

TEST(FetchUpdateAnswer, IsEmptyWhenBothFail) {
  test::FakePrograms programs;
  programs.add("curl", "echo half; exit 1");
  programs.add("wget", "echo half; exit 1");
  EXPECT_EQ(fetchUpdateAnswer(kAnyAddress), "");
}

TEST(FetchUpdateAnswer, IsEmptyWithoutEitherProgram) {
  const test::FakePrograms programs(RestOfPath::Hidden);
  EXPECT_EQ(fetchUpdateAnswer(kAnyAddress), "");
}

// --- with the programs, and a server ---

/// A server, and one of the programs alone on PATH.
class FetchUpdateAnswerBy : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const std::string program = test::programOnPath(GetParam());
    if (program.empty()) GTEST_SKIP() << GetParam() << " is not installed";
    if (test::programOnPath("python3").empty()) GTEST_SKIP() << "python3 is not installed";
    server.emplace(kAnswer);
    programs.emplace(RestOfPath::Hidden);
    ASSERT_EQ(symlink(program.c_str(), (*programs / GetParam()).c_str()), 0);
  }

  std::string fetch(const std::string& path) const {
    return fetchUpdateAnswer(server->address(path));
  }

  std::optional<test::UpdateServer> server;
  std::optional<test::FakePrograms> programs;
};

INSTANTIATE_TEST_SUITE_P(RealProgram, FetchUpdateAnswerBy, testing::Values("curl", "wget"),
                         [](const auto& program) { return std::string(program.param); });

TEST_P(FetchUpdateAnswerBy, BringsTheAnswer) {
  EXPECT_EQ(fetch("answer?platform=linux&version=1.1.1"), kAnswer);
  EXPECT_EQ(server->requests(),
            std::vector<std::string>{"/answer?platform=linux&version=1.1.1\tHeapgauge/1.1.1 "
                                     "(linux)\tapplication/json"});
}

TEST_P(FetchUpdateAnswerBy, FollowsThreeRedirects) {
  EXPECT_EQ(fetch("redirect/1"), kAnswer);
  EXPECT_EQ(fetch("redirect/3"), kAnswer);
}

TEST_P(FetchUpdateAnswerBy, FollowsNoFourthRedirect) {
  EXPECT_EQ(fetch("redirect/4"), "");
  EXPECT_EQ(server->requests().size(), 4u);
}

TEST_P(FetchUpdateAnswerBy, TakesNoAnswerWithAnError) {
  EXPECT_EQ(fetch("status/404"), "");
  EXPECT_EQ(fetch("status/500"), "");
  EXPECT_EQ(server->requests().size(), 2u);
}

TEST_P(FetchUpdateAnswerBy, TakesNoPartOfAnAnswer) { EXPECT_EQ(fetch("cut"), ""); }

TEST_P(FetchUpdateAnswerBy, TakesAnEmptyAnswerForNone) {
  server->setAnswer("");
  EXPECT_EQ(fetch("answer"), "");
}

TEST_P(FetchUpdateAnswerBy, FindsNobodyAtTheAddress) {
  server->stop();
  EXPECT_EQ(fetch("answer"), "");
}

TEST_P(FetchUpdateAnswerBy, TakesNoMoreThanItWants) {
  server->setAnswer(std::string(3 * 1024 * 1024, 'x'));
  EXPECT_LE(fetch("answer").size(), 1024u * 1024 + 4096);
}

TEST_P(FetchUpdateAnswerBy, GivesUpOnAServerThatDoesNotAnswer) {
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(fetch("never"), "");
  const auto waited = Clock::now() - start;
  EXPECT_GE(waited, std::chrono::seconds(9));
  EXPECT_LT(waited, std::chrono::seconds(30));
}

}  // namespace
}  // namespace app
