#include "app/frame/pending_questions.h"

#include <cstddef>
#include <utility>

namespace app {

PendingQuestions::PendingQuestions(ui::Connection& connection, const ui::Style& style,
                                   PendingDeletes& pending, Open open)
    : connection_(connection), style_(style), pending_(pending), open_(std::move(open)) {}

bool PendingQuestions::settleBefore(Continuation continuation) {
  return settle(std::nullopt, std::move(continuation));
}

bool PendingQuestions::settleWithin(const std::string& path, Continuation continuation) {
  return settle(path, std::move(continuation));
}

bool PendingQuestions::settle(std::optional<std::string> folder, Continuation continuation) {
  const std::size_t count = folder ? pending_.countWithin(*folder) : pending_.size();
  if (count == 0) {
    continuation();
    return true;
  }
  if (const auto open = question_.lock(); open && open->folder == folder) {
    open->continuation = std::move(continuation);
    return false;
  }
  const auto question = std::make_shared<Question>(
      Question{std::move(folder), std::move(continuation), pending_.pause()});
  question_ = question;
  const auto ask = question->folder ? rescanFolderQuestion : leaveScanQuestion;
  open_(ask(connection_, style_, count, choicesOf(question)));
  return false;
}

/// The continuation may end all of this: nothing comes after it.
PendingChoices PendingQuestions::choicesOf(const std::shared_ptr<Question>& question) {
  const auto resume = [this, question] {
    question->pause.reset();
    question_.reset();
  };
  const auto goOn = [question] { std::exchange(question->continuation, {})(); };
  const auto& folder = question->folder;
  PendingChoices choices;
  choices.deleteThem = [this, resume, folder, goOn] {
    resume();
    folder ? pending_.deleteNowWithin(*folder) : pending_.deleteAllNow();
    goOn();
  };
  choices.putThemBack = [this, resume, folder, goOn] {
    resume();
    folder ? pending_.undeleteWithin(*folder) : pending_.undeleteAll();
    goOn();
  };
  choices.cancel = resume;
  return choices;
}

void PendingQuestions::confirmDeleteNow() {
  if (pending_.empty()) return;
  open_(
      deleteNowQuestion(connection_, style_, pending_.size(), [this] { pending_.deleteAllNow(); }));
}

// What failed.

void PendingQuestions::failed(const std::string& path, const std::string& error) {
  failures_.push_back({path, error});
}

void PendingQuestions::tick() {
  if (!failures_.empty() && !reporting()) reportFailures();
}

void PendingQuestions::afterFailures(Continuation then) {
  if (failures_.empty() && !reporting()) {
    then();
    return;
  }
  afterFailures_ = std::move(then);
  tick();
}

void PendingQuestions::reportFailures() {
  const auto message = std::make_shared<const int>(0);
  message_ = message;
  const std::vector<TrashFailure> failures = std::exchange(failures_, {});
  open_(trashFailureMessage(connection_, style_, failures, [this, message] {
    if (!failures_.empty()) {
      reportFailures();
    } else if (const auto then = std::exchange(afterFailures_, {})) {
      then();
    }
  }));
}

}  // namespace app
