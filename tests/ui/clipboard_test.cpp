#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/child.h"
#include "tests/ui/window_test_base.h"
#include "ui/x11.h"

namespace test {
namespace {

class ClipboardTest : public WindowTest {
 protected:
  void SetUp() override { show(); }

  /// What xclip reads as `target`, with the window's loop running meanwhile; nothing when it is
  /// refused.
  std::optional<std::string> paste(const std::string& target) {
    const std::string path = directory / "pasted";
    Child xclip({"xclip", "-o", "-selection", "clipboard", "-t", target}, "/dev/null", path);
    if (!runUntil([&] { return xclip.exitStatus().has_value(); })) return std::nullopt;
    if (*xclip.exitStatus() != 0) return std::nullopt;
    return readFile(path);
  }

  /// Requests the selection and has the window answer.
  std::optional<OtherClient::Answer> ask(const std::string& selection, const std::string& target,
                                         const std::string& property = "ANSWER") {
    other.requestSelection(selection, target, property);
    settle();
    return other.answer();
  }
};

TEST_F(ClipboardTest, GivesItsTextToAnotherProgram) {
  window.setClipboardText("/home/u/Bücher/α\nβ");
  EXPECT_EQ(paste("UTF8_STRING"), "/home/u/Bücher/α\nβ");
}

TEST_F(ClipboardTest, GivesTheSameBytesAsString) {
  window.setClipboardText("Bücher \xFF");
  EXPECT_EQ(paste("STRING"), "Bücher \xFF");
}

TEST_F(ClipboardTest, GivesTheNewestText) {
  window.setClipboardText("one");
  window.setClipboardText("two");
  settle();
  EXPECT_EQ(paste("UTF8_STRING"), "two");
}

TEST_F(ClipboardTest, AnswersTargetsWithExactlyThree) {
  window.setClipboardText("text");
  const auto answer = ask("CLIPBOARD", "TARGETS");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->selection, "CLIPBOARD");
  EXPECT_EQ(answer->target, "TARGETS");
  EXPECT_EQ(answer->property, "ANSWER");
  EXPECT_TRUE(answer->timeIsThatOfTheRequest);
  std::vector<std::string> names;
  for (const unsigned long atom : other.longProperty(other.requestor(), "ANSWER")) {
    names.push_back(other.atomName(atom));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"TARGETS", "UTF8_STRING", "STRING"}));
}

TEST_F(ClipboardTest, StoresTextUnderTheTypeAskedFor) {
  window.setClipboardText("text");
  ASSERT_TRUE(ask("CLIPBOARD", "UTF8_STRING"));
  EXPECT_EQ(other.textProperty(other.requestor(), "ANSWER", "UTF8_STRING"), "text");
  ASSERT_TRUE(ask("CLIPBOARD", "STRING"));
  EXPECT_EQ(other.textProperty(other.requestor(), "ANSWER", "STRING"), "text");
}

TEST_F(ClipboardTest, RefusesOtherTargets) {
  window.setClipboardText("text");
  const auto answer = ask("CLIPBOARD", "image/png");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->target, "image/png");
  EXPECT_EQ(answer->property, "");
  EXPECT_EQ(paste("image/png"), std::nullopt);
}

TEST_F(ClipboardTest, AnswersAClientThatNamesNoPropertyOnTheOneNamedLikeTheTarget) {
  window.setClipboardText("text");
  const auto answer = ask("CLIPBOARD", "STRING", "");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->property, "STRING");
  EXPECT_EQ(other.textProperty(other.requestor(), "STRING", "STRING"), "text");
}

TEST_F(ClipboardTest, RefusesTextLargerThanARequest) {
  window.setClipboardText(std::string(16'777'216, 'x'));
  const auto refused = ask("CLIPBOARD", "UTF8_STRING");
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->property, "");
  const std::string large(16'700'000, 'y');
  window.setClipboardText(large);
  EXPECT_EQ(paste("UTF8_STRING"), large);
}

TEST_F(ClipboardTest, DoesNotGiveItsTextAsAnotherSelection) {
  window.setClipboardText("secret");
  EXPECT_EQ(other.selectionOwner("PRIMARY"), 0u);
  // A request for a selection that the window was never asked to answer for.
  other.sendSelectionRequest(window.xid(), "_OTHER", "UTF8_STRING");
  settle();
  const auto answer = other.answer();
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->property, "");
}

TEST_F(ClipboardTest, ForgetsItsTextWhenAnotherProgramCopies) {
  window.setClipboardText("ours");
  const std::string path = directory / "theirs";
  writeFile(path, "theirs");
  Child xclip({"xclip", "-i", "-quiet", "-selection", "clipboard"}, path);
  EXPECT_TRUE(runUntil([&] { return window.clipboardText().empty(); }));
  EXPECT_EQ(paste("UTF8_STRING"), "theirs");
}

TEST_F(ClipboardTest, KeepsATextThatItOfferedBeforeItHeardOfAnEarlierLoss) {
  window.setClipboardText("one");
  settle();
  other.takeSelection("CLIPBOARD");
  ASSERT_NE(other.selectionOwner("CLIPBOARD"), window.xid());
  window.setClipboardText("two");
  settle();
  ASSERT_EQ(other.selectionOwner("CLIPBOARD"), window.xid());
  EXPECT_EQ(window.clipboardText(), "two");
  EXPECT_EQ(paste("UTF8_STRING"), "two");
  other.takeSelection("CLIPBOARD");
  settle();
  EXPECT_EQ(window.clipboardText(), "") << "a loss that came later";
}

TEST_F(ClipboardTest, KeepsItsTextWhenAnotherSelectionIsLost) {
  window.setClipboardText("ours");
  Display* display = connection->native().display;
  XSetSelectionOwner(display, XInternAtom(display, "_OTHER", False), window.xid(), CurrentTime);
  XSync(display, False);
  ASSERT_EQ(other.selectionOwner("_OTHER"), window.xid());
  other.takeSelection("_OTHER");
  settle();
  EXPECT_EQ(window.clipboardText(), "ours");
  EXPECT_EQ(paste("UTF8_STRING"), "ours");
}

TEST_F(ClipboardTest, SurvivesARequestorThatVanished) {
  window.setClipboardText("text");
  other.requestSelection("CLIPBOARD", "UTF8_STRING");
  other.destroyRequestor();
  settle();
  EXPECT_EQ(paste("UTF8_STRING"), "text");
}

TEST_F(ClipboardTest, ClaimsTheSelectionForTheWindow) {
  window.setClipboardText("text");
  settle();
  EXPECT_EQ(other.selectionOwner("CLIPBOARD"), window.xid());
}

TEST(ClipboardBeforeTheWindow, KeepsTheTextWithoutClaimingTheSelection) {
  WindowOnServer early;
  early.window.setClipboardText("text");
  EXPECT_EQ(early.window.clipboardText(), "text");
  EXPECT_EQ(early.other.selectionOwner("CLIPBOARD"), 0u);
}

}  // namespace
}  // namespace test
