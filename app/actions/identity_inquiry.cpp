#include "app/actions/identity_inquiry.h"

#include <cerrno>
#include <cstddef>
#include <exception>
#include <memory>
#include <utility>

#include "base/detached_threads.h"

namespace app {

namespace {

/// What a thread answers, and with what.
struct Inquiry {
  Identify identify;
  std::vector<std::string> paths;
  std::vector<std::promise<FoundIdentity>> answers;
};

// What leaves a thread ends the program, and no answer is worth that.
FoundIdentity found(const Inquiry& inquiry, std::size_t number) noexcept {
  try {
    errno = 0;
    const auto identity = inquiry.identify(inquiry.paths[number]);
    return {identity, identity ? 0 : errno};
  } catch (const std::exception&) {
    return {std::nullopt, ENOMEM};
  }
}

void answerAll(Inquiry& inquiry) {
  for (std::size_t i = 0; i < inquiry.paths.size(); ++i) {
    inquiry.answers[i].set_value(found(inquiry, i));
  }
}

}  // namespace

std::vector<IdentityAnswer> askIdentities(std::vector<std::string> paths, Identify identify) {
  const auto inquiry = std::make_shared<Inquiry>();
  inquiry->answers.resize(paths.size());
  inquiry->paths = std::move(paths);
  inquiry->identify = std::move(identify);
  std::vector<IdentityAnswer> owed;
  owed.reserve(inquiry->answers.size());
  for (auto& answer : inquiry->answers) owed.push_back(answer.get_future().share());
  if (owed.empty()) return owed;
  if (!base::startDetached([inquiry] { answerAll(*inquiry); })) {
    for (auto& answer : inquiry->answers) answer.set_value({std::nullopt, EAGAIN});
  }
  return owed;
}

std::optional<FoundIdentity> answerBy(std::chrono::steady_clock::time_point deadline,
                                      const IdentityAnswer& answer) {
  if (!answer.valid() || answer.wait_until(deadline) != std::future_status::ready) return {};
  return answer.get();
}

}  // namespace app
