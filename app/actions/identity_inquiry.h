#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "app/actions/item_identity.h"

namespace app {

/// Finds what lies at a path, as `identify` does: nothing, and errno, when that cannot be asked.
/// May take for ever, on a disk that does not answer.
using Identify = std::function<std::optional<ItemIdentity>(const std::string& path)>;

/// What the disk said of a path.
struct FoundIdentity {
  /// Nothing when it could not be had; `errorNumber` is why.
  std::optional<ItemIdentity> identity;
  int errorNumber = 0;
};

/// An answer that is owed. Copies are about the same answer.
using IdentityAnswer = std::shared_future<FoundIdentity>;

/// Has each of `paths` looked at, one after the other, by a thread of its own; returns one answer
/// for each at once. The thread ends with the last answer. Nobody waits for one that hangs: it
/// stays, with its copy of `identify`, until the disk answers or the program ends.
std::vector<IdentityAnswer> askIdentities(std::vector<std::string> paths, Identify identify);

/// The answer; waits for it until `deadline` at most, and returns nothing when it is still owed.
std::optional<FoundIdentity> answerBy(std::chrono::steady_clock::time_point deadline,
                                      const IdentityAnswer& answer);

}  // namespace app
