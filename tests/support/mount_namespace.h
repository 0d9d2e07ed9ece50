#pragma once

#include <functional>
#include <string>

namespace test {

/// Runs `body` in a child process with a mount namespace of its own, in which it may mount what it
/// likes: nothing of it is seen outside. An ordinary user gets a user namespace as well. Returns an
/// empty string when `body` returned one, else what `body` returned, or a sentence that begins with
/// "cannot" when this machine forbids such namespaces.
std::string inPrivateMounts(const std::function<std::string()>& body);

}  // namespace test
