#pragma once

#include <chrono>
#include <concepts>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "base/detached_threads.h"
#include "base/mutex.h"

namespace base {

/// Has questions answered that may take for ever: what a disk, a server or a child program is
/// asked. Each has a thread of its own, so that one that hangs delays no other, and nobody waits
/// for it.
///
/// Used by one thread. One object serves the whole run of a program: it remembers which questions
/// still owe an answer and asks none of them twice. A new object for every question would leave a
/// thread behind each time that one hangs.
///
/// `Question` is copied and compared. An `Answer` made without arguments means that none could be
/// had; neither that nor a move throws.
template <std::totally_ordered Question, std::default_initializable Answer>
class OwedAnswers {
 public:
  /// Finds an answer and may wait for it without end. Called on several threads at once, perhaps
  /// still when the object is gone and the program ends: it owns all that it needs. What it throws,
  /// as when memory runs out, makes an `Answer{}`.
  using Respond = std::function<Answer(const Question&)>;
  /// Hands an answer on, to a queue of the thread that asked. Called on the threads of the
  /// questions, one call at a time and with a lock held, so it is brief: it neither uses this
  /// object nor waits for a thread that does. What it throws loses that answer and nothing else.
  using HandOn = std::function<void(const Question&, Answer)>;

  OwedAnswers(Respond respond, HandOn handOn)
      : shared_(std::make_shared<Shared>(std::move(respond), std::move(handOn))) {}
  /// Returns without waiting for answers. None is handed on afterwards: a call of `handOn` that is
  /// under way has ended, and what `handOn` holds is gone. A thread whose question hangs stays,
  /// with `respond`, until it has its answer or the program ends. What was handed on before may
  /// still be on its way.
  ~OwedAnswers();
  OwedAnswers(const OwedAnswers&) = delete;
  OwedAnswers& operator=(const OwedAnswers&) = delete;

  /// Asks, and waits `patience` at most for the answer. One that comes in time is returned and not
  /// handed on, so that a view can be drawn right the first time. Otherwise returns nothing: the
  /// answer is still owed and will be handed on, perhaps when nobody cares for it any more.
  /// A question that still owes the answer to an earlier call is not asked again: that answer
  /// serves both. Returns `Answer{}` at once where no thread can be started; nothing is owed then.
  std::optional<Answer> ask(const Question& question, std::chrono::milliseconds patience = {});

 private:
  struct Shared;

  const std::shared_ptr<Shared> shared_;  // with the threads, which may outlive this object
};

template <std::totally_ordered Question, std::default_initializable Answer>
struct OwedAnswers<Question, Answer>::Shared {
  Shared(Respond respondWith, HandOn handOnTo)
      : respond(std::move(respondWith)), handOn(std::move(handOnTo)) {}

  /// The work of one thread.
  void answer(const Question& question) noexcept EXCLUDES(mutex);
  Answer answerOrNone(const Question& question) const noexcept;
  void handOnOrLose(const Question& question, Answer answer) noexcept REQUIRES(mutex);

  /// False when no thread can be had. `self` is this, for the thread.
  bool start(const std::shared_ptr<Shared>& self, const Question& question) REQUIRES(mutex);
  std::optional<Answer> waitFor(const Question& question,
                                std::chrono::steady_clock::time_point deadline) REQUIRES(mutex);

  const Respond respond;
  Mutex mutex;                      // guards the members below, and is held in `handOn`
  HandOn handOn GUARDED_BY(mutex);  // empty once nobody is there to hand on to
  std::set<Question> owing GUARDED_BY(mutex);
  CondVar cameInTime;  // `inTime` was set
  /// The question whose answer is waited for, of the one who waits, and that answer.
  const Question* waitedFor GUARDED_BY(mutex) = nullptr;
  std::optional<Answer> inTime GUARDED_BY(mutex);
};

template <std::totally_ordered Question, std::default_initializable Answer>
OwedAnswers<Question, Answer>::~OwedAnswers() {
  HandOn forgotten;  // and what it holds, once the lock is let go
  const MutexLock lock(shared_->mutex);
  forgotten.swap(shared_->handOn);
}

template <std::totally_ordered Question, std::default_initializable Answer>
std::optional<Answer> OwedAnswers<Question, Answer>::ask(const Question& question,
                                                         std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const MutexLock lock(shared_->mutex);
  if (!shared_->start(shared_, question)) return Answer{};
  if (patience <= patience.zero()) return std::nullopt;
  return shared_->waitFor(question, deadline);
}

template <std::totally_ordered Question, std::default_initializable Answer>
bool OwedAnswers<Question, Answer>::Shared::start(const std::shared_ptr<Shared>& self,
                                                  const Question& question) {
  try {
    if (!owing.insert(question).second) return true;
    if (startDetached([self, question] { self->answer(question); })) return true;
  } catch (...) {  // no memory for what belongs to a thread
  }
  owing.erase(question);
  return false;
}

template <std::totally_ordered Question, std::default_initializable Answer>
std::optional<Answer> OwedAnswers<Question, Answer>::Shared::waitFor(
    const Question& question, std::chrono::steady_clock::time_point deadline) {
  waitedFor = &question;
  while (!inTime && cameInTime.waitUntil(mutex, deadline)) {
  }
  waitedFor = nullptr;
  return std::exchange(inTime, std::nullopt);
}

template <std::totally_ordered Question, std::default_initializable Answer>
void OwedAnswers<Question, Answer>::Shared::answer(const Question& question) noexcept {
  Answer answer = answerOrNone(question);
  const MutexLock lock(mutex);
  owing.erase(question);
  if (waitedFor != nullptr && *waitedFor == question) {
    inTime = std::move(answer);
    waitedFor = nullptr;
    cameInTime.notifyOne();
  } else if (handOn) {
    handOnOrLose(question, std::move(answer));
  }
}

// An exception that leaves a thread ends the program, and no answer is worth that.

template <std::totally_ordered Question, std::default_initializable Answer>
Answer OwedAnswers<Question, Answer>::Shared::answerOrNone(
    const Question& question) const noexcept {
  try {
    return respond(question);
  } catch (...) {
    return Answer{};
  }
}

template <std::totally_ordered Question, std::default_initializable Answer>
void OwedAnswers<Question, Answer>::Shared::handOnOrLose(const Question& question,
                                                         Answer answer) noexcept {
  try {
    handOn(question, std::move(answer));
  } catch (...) {
  }
}

}  // namespace base
