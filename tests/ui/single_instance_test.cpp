#include "ui/single_instance.h"

#include <string>

#include "tests/support/environment.h"
#include "tests/ui/window_test_base.h"

namespace test {
namespace {

constexpr ui::InstanceNames kNames = {.selection = "_TEST_INSTANCE", .property = "_TEST_TEXT"};

class SingleInstance : public WindowTest {
 protected:
  void SetUp() override {
    show();
    other.listenToRoot();
  }
  void claim() { ui::claimInstance(kNames, *connection, window.xid()); }
  std::string text() { return other.textProperty(window.xid(), "_TEST_TEXT", "UTF8_STRING"); }
};

TEST_F(SingleInstance, FindsNobodyWithoutADisplay) {
  ScopedEnvironment environment;
  environment.unset("DISPLAY");
  EXPECT_FALSE(ui::handOver(kNames, "text"));
}

TEST_F(SingleInstance, FindsNobodyBeforeAWindowIsClaimed) {
  EXPECT_FALSE(ui::handOver(kNames, "text"));
  EXPECT_FALSE(other.messageToRoot());
}

TEST_F(SingleInstance, ClaimsTheWindowGivenLast) {
  other.takeSelection("_TEST_INSTANCE");
  claim();
  EXPECT_TRUE(runUntil([&] { return other.selectionOwner("_TEST_INSTANCE") == window.xid(); }));
}

TEST_F(SingleInstance, LeavesTheTextByteForByte) {
  claim();
  for (const std::string& bytes : {std::string("a\nb\xFF\0c", 6), std::string("x")}) {
    EXPECT_TRUE(ui::handOver(kNames, bytes));
    EXPECT_EQ(text(), bytes);
  }
}

TEST_F(SingleInstance, LeavesNoEmptyText) {
  claim();
  EXPECT_TRUE(ui::handOver(kNames, "before"));
  EXPECT_TRUE(ui::handOver(kNames, ""));
  EXPECT_EQ(text(), "before");
}

TEST_F(SingleInstance, ActivatesWithoutTextThatOneRequestCannotCarry) {
  claim();
  EXPECT_TRUE(ui::handOver(kNames, std::string(16 << 20, 'x')));
  EXPECT_EQ(text(), "");
  const auto message = other.messageToRoot();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->window, window.xid());
}

TEST_F(SingleInstance, KeepsTheClipboardApart) {
  window.setClipboardText("copied");
  claim();
  other.takeSelection("_TEST_INSTANCE");
  settle();
  EXPECT_EQ(window.clipboardText(), "copied");
}

}  // namespace
}  // namespace test
