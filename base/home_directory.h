#pragma once

#include <string>

namespace base {

/// The user's home directory: $HOME when it is set and not empty, otherwise the one of the account
/// entry of the effective user. Empty when there is neither. Reads the environment: not to be
/// called while another thread changes it.
std::string homeDirectory();

}  // namespace base
