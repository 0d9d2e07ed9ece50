#include "app/actions/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include "base/file_descriptor.h"
#include "tests/app/actions/fake_program.h"
#include "tests/support/eventually.h"

namespace app {
namespace {

const std::vector<std::string> kAwkward = {
    "two words", "it's \"quoted\"", "$HOME `id` \\ * ?", "line\nline\n", "", "\xff\xfe\x80", "-n",
    "\t "};

std::vector<std::string> withName(const std::string& name, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), name);
  return arguments;
}

std::vector<std::string> shell(const std::string& script) { return {"sh", "-c", script}; }

bool hasNoChild() { return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD; }

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

/// What `script` writes to its file "$0" when it is started detached.
std::string detachedOutput(const std::string& script) {
  const test::TempDirectory directory;
  const std::string output = directory / "output";
  EXPECT_TRUE(spawnDetached(
      {"sh", "-c", "{ " + script + "; } > \"$0.part\"; mv \"$0.part\" \"$0\"", output}));
  EXPECT_TRUE(test::eventually([&] { return exists(output); }));
  return test::readFile(output);
}

/// Descriptors that a child would inherit if nobody closed them.
class LooseDescriptors {
 public:
  LooseDescriptors() {
    for (const int at : {3, 7, 50, 500}) {
      if (fcntl(at, F_GETFD) < 0 && dup2(null_.get(), at) == at) held_.emplace_back(at);
    }
  }
  std::size_t count() const { return held_.size(); }

 private:
  base::FileDescriptor null_{open("/dev/null", O_RDONLY)};
  std::vector<base::FileDescriptor> held_;
};

/// Blocks one signal and ignores another for the scope.
class OddSignals {
 public:
  OddSignals() : pipeBefore_(signal(SIGPIPE, SIG_IGN)) {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, &maskBefore_);
  }
  ~OddSignals() {
    sigprocmask(SIG_SETMASK, &maskBefore_, nullptr);
    signal(SIGPIPE, pipeBefore_);
  }

 private:
  sighandler_t pipeBefore_;
  sigset_t maskBefore_;
};

constexpr const char* kTellSignals = "grep -E '^Sig(Blk|Ign)' /proc/self/status";
constexpr const char* kNoSignals = "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n";

/// Runs `body` in a child that may start no process, and says what it returned. Nothing where such
/// a child cannot be made: a name space of one user has nobody else to become.
std::optional<bool> withoutMoreProcesses(const std::function<bool()>& body) {
  const pid_t child = fork();
  if (child == 0) {
    const rlimit none{0, 0};
    bool limited = setrlimit(RLIMIT_NPROC, &none) == 0;
    if (geteuid() == 0) limited = limited && setuid(65534) == 0;  // no limit holds for root
    _exit(limited ? (body() ? 1 : 0) : 2);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status)) << status;
  if (WEXITSTATUS(status) > 1) return std::nullopt;
  return WEXITSTATUS(status) == 1;
}

TEST(SpawnDetached, HandsEveryArgumentOnAsItIs) {
  test::FakePrograms programs;
  programs.addRecorder("program");
  EXPECT_TRUE(spawnDetached(withName("program", kAwkward)));
  EXPECT_EQ(programs.argumentsOf("program"), kAwkward);
}

TEST(SpawnDetached, LeavesNoChildBehindAfterAHundredStarts) {
  ASSERT_TRUE(hasNoChild());
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(spawnDetached({"true"}));
    ASSERT_TRUE(hasNoChild()) << i;
  }
}

TEST(SpawnDetached, ReturnsWhileTheProgramStillRuns) {
  const test::TempDirectory directory;
  const std::string gate = directory / "gate";
  ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
  ASSERT_TRUE(spawnDetached({"sh", "-c", "read line < \"$0\"; : > \"$0.passed\"", gate}));
  // The program waits for somebody who writes, so it has not ended by itself.
  const base::FileDescriptor opened(open(gate.c_str(), O_WRONLY));
  EXPECT_FALSE(exists(gate + ".passed"));
  ASSERT_EQ(write(opened.get(), "\n", 1), 1);
  EXPECT_TRUE(test::eventually([&] { return exists(gate + ".passed"); }));
}

TEST(SpawnDetached, PutsTheProgramIntoASessionOfItsOwn) {
  // The sixth field: the session.
  const std::string session = detachedOutput("cut -d ' ' -f 6 /proc/$$/stat");
  EXPECT_GT(std::stol(session), 1);
  EXPECT_NE(std::stol(session), getsid(0));
}

TEST(SpawnDetached, IsNotTheParentOfTheProgram) {
  EXPECT_NE(std::stol(detachedOutput("echo $PPID")), getpid());
}

TEST(SpawnDetached, GivesTheProgramNothingButTheNullDevice) {
  const LooseDescriptors loose;
  ASSERT_GE(loose.count(), 2u);
  const test::TempDirectory directory;
  const std::string output = directory / "output";
  // Nothing is redirected before the look: the descriptors are as they came.
  const std::string look =
      "for fd in 0 1 2; do [ /proc/$$/fd/$fd -ef /dev/null ] && found=\"$found $fd\"; done; "
      "for fd in 3 7 50 500; do [ -e /proc/$$/fd/$fd ] && found=\"$found $fd\"; done; "
      "echo \"$found\" > \"$0.part\"; mv \"$0.part\" \"$0\"";
  ASSERT_TRUE(spawnDetached({"sh", "-c", look, output}));
  ASSERT_TRUE(test::eventually([&] { return exists(output); }));
  EXPECT_EQ(test::readFile(output), " 0 1 2\n");
}

TEST(SpawnDetached, StartsTheProgramWithTheUsualSignals) {
  const OddSignals odd;
  EXPECT_EQ(detachedOutput(kTellSignals), kNoSignals);
}

TEST(SpawnDetached, ReportsTheStartAloneWhenThereIsNoSuchProgram) {
  EXPECT_TRUE(spawnDetached({"heapgauge-test-no-such-program"}));
  EXPECT_TRUE(hasNoChild());
}

TEST(SpawnDetached, FailsWhenNoProcessCanBeStarted) {
  const auto started = withoutMoreProcesses([] { return spawnDetached({"true"}); });
  if (!started) GTEST_SKIP() << "no limit of processes holds for this user";
  EXPECT_FALSE(*started);
}

TEST(SpawnDetached, FailsForNoProgram) { EXPECT_FALSE(spawnDetached({})); }

TEST(RunCapture, ReturnsEveryByteOfTheOutput) {
  EXPECT_EQ(runCapture({"printf", "a b\\n\\377\\000c\\n"}), std::string("a b\n\xff\0c\n", 8));
  EXPECT_TRUE(hasNoChild());
}

TEST(RunCapture, HandsEveryArgumentOnAsItIs) {
  test::FakePrograms programs;
  programs.addRecorder("program");
  EXPECT_EQ(runCapture(withName("program", kAwkward)), "");
  EXPECT_EQ(programs.argumentsOf("program"), kAwkward);
}

TEST(RunCapture, HidesWhatTheProgramSaysOfItsErrors) {
  EXPECT_EQ(runCapture(shell("echo loud >&2; echo text")), "text\n");
  EXPECT_EQ(runCapture(shell("readlink /proc/$$/fd/2")), "/dev/null\n");
}

TEST(RunCapture, LeavesTheStandardInputAsItIs) {
  const test::TempDirectory directory;
  test::writeFile(directory / "input", "typed");
  const base::FileDescriptor before(dup(STDIN_FILENO));
  base::FileDescriptor input(open((directory / "input").c_str(), O_RDONLY));
  ASSERT_EQ(dup2(input.get(), STDIN_FILENO), STDIN_FILENO);
  EXPECT_EQ(runCapture({"cat"}), "typed");
  dup2(before.get(), STDIN_FILENO);
}

TEST(RunCapture, IsEmptyWhenTheProgramFailsAfterItHasPrinted) {
  EXPECT_EQ(runCapture(shell("echo text; exit 1")), "");
  EXPECT_EQ(runCapture(shell("echo text; exit 141")), "");
  EXPECT_EQ(runCapture(shell("echo text; kill -TERM $$")), "");
  EXPECT_EQ(runCapture(shell("echo text; kill -PIPE $$")), "");
  EXPECT_TRUE(hasNoChild());
}

TEST(RunCapture, IsEmptyWhenNothingCanBeRun) {
  EXPECT_EQ(runCapture({}), "");
  EXPECT_EQ(runCapture({"heapgauge-test-no-such-program"}), "");
  const auto said = withoutMoreProcesses([] { return !runCapture({"echo", "text"}).empty(); });
  if (!said) GTEST_SKIP() << "no limit of processes holds for this user";
  EXPECT_FALSE(*said);
}

TEST(RunCapture, IsEmptyWhenThereIsNoPipe) {
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{3, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  const std::string captured = runCapture({"echo", "text"});
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(captured, "");
}

TEST(RunCapture, StopsReadingJustPastAMebibyte) {
  constexpr std::size_t kMost = 1048576;
  // One that the closed pipe ends, one whose shell lives on, one whose shell ends as it did.
  for (const char* script : {"exec head -c 3000000 /dev/zero", "head -c 3000000 /dev/zero; true",
                             "head -c 3000000 /dev/zero; exit $?"}) {
    const std::string captured = runCapture(shell(script));
    EXPECT_GT(captured.size(), kMost) << script;
    EXPECT_LE(captured.size(), kMost + 4096) << script;
  }
  EXPECT_EQ(runCapture(shell("head -c 3000000 /dev/zero; exit 1")), "");
}

TEST(RunCapture, ReturnsAnOutputOfAMebibyteWhole) {
  EXPECT_EQ(runCapture({"head", "-c", "1048576", "/dev/zero"}), std::string(1048576, '\0'));
}

TEST(RunCapture, GivesTheProgramNoOtherDescriptor) {
  const LooseDescriptors loose;
  ASSERT_GE(loose.count(), 2u);
  // The fourth one is what the listing itself takes.
  EXPECT_EQ(runCapture({"ls", "/proc/self/fd"}), "0\n1\n2\n3\n");
}

TEST(RunCapture, WorksWithoutAStandardOutputOfOurs) {
  const base::FileDescriptor before(dup(STDOUT_FILENO));
  for (const std::vector<int>& missing : {std::vector<int>{STDOUT_FILENO}, {0, 1}, {0, 1, 2}}) {
    std::vector<base::FileDescriptor> saved;
    for (const int fd : missing) {
      saved.emplace_back(fcntl(fd, F_DUPFD_CLOEXEC, 10));
      close(fd);
    }
    const std::string captured = runCapture(shell("echo text; echo loud >&2"));
    for (std::size_t i = 0; i < missing.size(); ++i) dup2(saved[i].get(), missing[i]);
    EXPECT_EQ(captured, "text\n") << missing.size();
  }
}

TEST(RunCapture, StartsTheProgramWithTheUsualSignals) {
  const OddSignals odd;
  EXPECT_EQ(runCapture({"grep", "-E", "^Sig(Blk|Ign)", "/proc/self/status"}), kNoSignals);
}

TEST(IsOnPath, FindsExecutableFilesAlone) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  programs.add("program", "true");
  test::writeFile(programs / "text");
  ASSERT_EQ(chmod((programs / "text").c_str(), 0600), 0);
  test::makeDirectory(programs / "folder");
  EXPECT_TRUE(isOnPath("program"));
  EXPECT_TRUE(isOnPath(programs / "program"));
  EXPECT_FALSE(isOnPath("text"));
  EXPECT_FALSE(isOnPath("folder"));
  EXPECT_FALSE(isOnPath("missing"));
  EXPECT_FALSE(isOnPath(""));
}

TEST(IsOnPath, LooksIntoEveryDirectoryOfThePath) {
  test::FakePrograms programs(test::FakePrograms::RestOfPath::Hidden);
  programs.add("program", "true");
  test::ScopedEnvironment environment;
  environment.set("PATH", "/nowhere::" + (programs / "") + ":/nowhere/else");
  EXPECT_TRUE(isOnPath("program"));
  environment.set("PATH", "/nowhere");
  EXPECT_FALSE(isOnPath("sh"));
  environment.unset("PATH");
  EXPECT_TRUE(isOnPath("sh"));
}

}  // namespace
}  // namespace app
