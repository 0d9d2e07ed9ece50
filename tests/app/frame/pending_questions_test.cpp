// Questions about pending deletes, answered over a list of real entries.

#include "app/frame/pending_questions.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/frame/pending_rows.h"
#include "tests/sizewalk/tree_model.h"
#include "tests/ui/window_test_base.h"
#include "ui/keys.h"
#include "ui/widgets/input_stack.h"
#include "ui/widgets/message_dialog.h"

namespace app {
namespace {

using sizewalk::NodeId;
using Texts = std::vector<std::string>;

/// /r with one (10), two (20) and folder/ with three (30).
class PendingQuestionsTest : public test::WindowTest {
 protected:
  PendingQuestionsTest() {
    stack_.setSize(640, 420);
    tree_.createRoot("/r");
    const auto folders =
        test::add(tree_, test::Listing(0).folder("folder").file("one", 10, 10).file("two", 20, 20));
    test::add(tree_, test::Listing(folders[0]).file("three", 30, 30));
    pending_.setTree(&tree_);
    pending_.trash = [this](const PendingDelete& item, const ItemIdentity&, std::string* error) {
      trashed_.push_back(item.path);
      *error = "It is stuck.";
      return !stuck_;
    };
    pending_.failed = [this](const std::string& path, const std::string& error) {
      questions_.failed(path, error);
    };
    for (NodeId node = 1; node < tree_.nodeCount(); ++node) {
      if (tree_.isDirectory(node)) continue;
      files_.push_back(node);
    }
  }

  void putAll() { pending_.add(files_); }
  bool settle() {
    return questions_.settleBefore([this] { ++continued_; });
  }
  void key(unsigned long keysym) { stack_.key({.keysym = keysym, .text = {}}); }
  /// Presses the button, counted from the left.
  void answer(int button) {
    for (int i = 0; i <= button; ++i) key(ui::key::kTab);
    key(ui::key::kReturn);
  }
  void deleteThem() { answer(0); }
  void putThemBack() { answer(1); }
  std::uint64_t total() const { return tree_.allocatedSize(sizewalk::kRootNode); }

  ui::Style style_{*connection, ui::kLightPalette};
  sizewalk::FileTree tree_;
  std::vector<NodeId> files_;
  PendingDeletes pending_{[](const std::string&) { return std::optional(ItemIdentity{1, 1}); }};
  Texts opened_;
  // Its dialogs refer to the questions, which outlive them.
  PendingQuestions questions_{
      *connection, style_, pending_, [this](std::unique_ptr<ui::Overlay> dialog) {
        const auto& message = dynamic_cast<const ui::MessageDialog&>(*dialog);
        opened_.push_back(message.title() + ": " + message.text());
        stack_.open(std::move(dialog));
      }};
  ui::InputStack stack_;
  Texts trashed_;
  bool stuck_ = false;
  int continued_ = 0;
};

TEST_F(PendingQuestionsTest, GoesOnAtOnceWhenNothingWaits) {
  EXPECT_TRUE(settle());
  EXPECT_EQ(continued_, 1);
  EXPECT_TRUE(opened_.empty());
}

TEST_F(PendingQuestionsTest, AsksFirstAndLetsTheCountdownStandStill) {
  putAll();
  pending_.tick(4'000);
  EXPECT_FALSE(settle());
  EXPECT_EQ(continued_, 0);
  EXPECT_EQ(opened_, Texts{"Pending deletes: 3 items are waiting to be deleted. Leaving this scan "
                           "deletes them immediately."});
  pending_.tick(60'000);
  EXPECT_EQ(pending_.size(), 3u);
  key(ui::key::kEscape);
  EXPECT_EQ(continued_, 0);
  EXPECT_EQ(pending_.size(), 3u);
  pending_.tick(5'999);
  EXPECT_EQ(pending_.size(), 3u) << "it goes on where it stopped";
  pending_.tick(1);
  EXPECT_EQ(trashed_.size(), 3u);
}

TEST_F(PendingQuestionsTest, DeletesThemAndGoesOn) {
  putAll();
  settle();
  deleteThem();
  EXPECT_EQ(trashed_, (Texts{"/r/one", "/r/two", "/r/folder/three"}));
  EXPECT_EQ(continued_, 1);
  EXPECT_TRUE(pending_.empty());
  EXPECT_FALSE(pending_.paused());
}

TEST_F(PendingQuestionsTest, PutsThemBackAndGoesOn) {
  putAll();
  settle();
  putThemBack();
  EXPECT_EQ(total(), 60u);
  EXPECT_EQ(trashed_, Texts{});
  EXPECT_EQ(continued_, 1);
  EXPECT_FALSE(pending_.paused());
}

TEST_F(PendingQuestionsTest, RunsTheCountdownAgainBeforeTheContinuation) {
  putAll();
  bool paused = true;
  questions_.settleBefore([&] { paused = pending_.paused(); });
  putThemBack();
  EXPECT_FALSE(paused);
}

TEST_F(PendingQuestionsTest, RunsTheCountdownAgainWhateverClosesTheDialog) {
  putAll();
  std::unique_ptr<ui::Overlay> dialog;
  PendingQuestions questions(*connection, style_, pending_,
                             [&](std::unique_ptr<ui::Overlay> d) { dialog = std::move(d); });
  questions.settleBefore([this] { ++continued_; });
  EXPECT_TRUE(pending_.paused());
  dialog.reset();
  EXPECT_FALSE(pending_.paused());
  EXPECT_EQ(continued_, 0);
}

TEST_F(PendingQuestionsTest, AsksOnceForWhatIsAskedTwice) {
  putAll();
  settle();
  bool closed = false;
  EXPECT_FALSE(questions_.settleBefore([&] { closed = true; }));
  EXPECT_EQ(opened_.size(), 1u);
  putThemBack();
  EXPECT_TRUE(closed) << "the newer wish counts";
  EXPECT_EQ(continued_, 0);
}

TEST_F(PendingQuestionsTest, AsksAgainAfterACancel) {
  putAll();
  settle();
  key(ui::key::kEscape);
  settle();
  EXPECT_EQ(opened_.size(), 2u);
  EXPECT_TRUE(pending_.paused());
}

TEST_F(PendingQuestionsTest, AsksAgainWhenSomethingWaitsAfterTheAnswer) {
  putAll();
  questions_.settleBefore([this] {
    putAll();
    settle();
  });
  putThemBack();
  EXPECT_EQ(opened_.size(), 2u);
  EXPECT_EQ(continued_, 0);
  EXPECT_TRUE(pending_.paused());
  putThemBack();
  EXPECT_EQ(continued_, 1);
}

TEST_F(PendingQuestionsTest, SettlesOnlyWhatIsInsideAFolderThatIsReadAgain) {
  putAll();
  EXPECT_TRUE(questions_.settleWithin("/r/other", [this] { ++continued_; }));
  EXPECT_FALSE(questions_.settleWithin("/r/folder", [this] { ++continued_; }));
  EXPECT_EQ(opened_, Texts{"Pending deletes: 1 item is waiting to be deleted. Rescanning their "
                           "folder deletes them immediately."});
  putThemBack();
  EXPECT_EQ(continued_, 2);
  EXPECT_EQ(pending_.size(), 2u);
  pending_.undeleteAll();
  putAll();
  questions_.settleWithin("/r/folder", [this] { ++continued_; });
  deleteThem();
  EXPECT_EQ(trashed_, Texts{"/r/folder/three"});
  EXPECT_EQ(pending_.size(), 2u);
}

TEST_F(PendingQuestionsTest, ConfirmsDeletingNow) {
  questions_.confirmDeleteNow();
  EXPECT_TRUE(opened_.empty()) << "nothing waits";
  putAll();
  questions_.confirmDeleteNow();
  EXPECT_EQ(opened_.size(), 1u);
  key(ui::key::kReturn);
  EXPECT_EQ(pending_.size(), 3u);
  questions_.confirmDeleteNow();
  pending_.tick(1'000);
  EXPECT_EQ(pending_.items()[0].remainingMs, 9'000) << "the countdown goes on meanwhile";
  deleteThem();
  EXPECT_EQ(trashed_.size(), 3u);
}

// What failed.

TEST_F(PendingQuestionsTest, TellsOfAFailureInItsOwnWords) {
  stuck_ = true;
  pending_.add(std::vector{files_[0]});
  pending_.tick(10'000);
  questions_.tick();
  questions_.tick();
  EXPECT_EQ(opened_,
            Texts{"Could not move it to the trash: /r/one - It is stuck. It is still where "
                  "it was."});
  EXPECT_EQ(total(), 60u);
}

TEST_F(PendingQuestionsTest, TellsOfAllThatFailedTogetherAtOnce) {
  stuck_ = true;
  putAll();
  pending_.tick(10'000);
  questions_.tick();
  ASSERT_EQ(opened_.size(), 1u);
  EXPECT_NE(opened_[0].find("3 items are still where they were."), std::string::npos);
}

TEST_F(PendingQuestionsTest, KeepsLaterFailuresUntilTheMessageIsClosed) {
  questions_.failed("/a", "x");
  questions_.tick();
  questions_.failed("/b", "y");
  questions_.tick();
  questions_.failed("/c", "z");
  questions_.tick();
  EXPECT_EQ(opened_.size(), 1u);
  key(ui::key::kReturn);
  ASSERT_EQ(opened_.size(), 2u);
  EXPECT_NE(opened_[1].find("/b - y.\n/c - z."), std::string::npos) << opened_[1];
  key(ui::key::kReturn);
  questions_.tick();
  EXPECT_EQ(opened_.size(), 2u);
}

TEST_F(PendingQuestionsTest, GoesOnAfterTheFailuresWereToldOf) {
  questions_.afterFailures([this] { ++continued_; });
  EXPECT_EQ(continued_, 1) << "at once when there are none";
  questions_.failed("/a", "x");
  questions_.afterFailures([this] { ++continued_; });
  EXPECT_EQ(opened_.size(), 1u);
  EXPECT_EQ(continued_, 1);
  questions_.failed("/b", "y");
  key(ui::key::kReturn);
  EXPECT_EQ(continued_, 1);
  key(ui::key::kReturn);
  EXPECT_EQ(continued_, 2);
}

// The rows of the panel.

TEST_F(PendingQuestionsTest, ShowsARowForEachItem) {
  pending_.add(std::vector{files_[1]});
  pending_.tick(2'500);
  pending_.add(std::vector{files_[0]});
  const auto rows = pendingRows(pending_);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0], (PendingRow{pending_.items()[0].id, "two", 0.75}));
  EXPECT_EQ(rows[1], (PendingRow{pending_.items()[1].id, "one", 1}));
}

}  // namespace
}  // namespace app
