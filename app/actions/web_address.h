#pragma once

#include <string>
#include <string_view>

namespace app {

/// Whether `address` may be handed to the desktop to be opened: "http://" or "https://" in any
/// case, a host, and no byte that an address cannot have (RFC 3986, 2), such as a space, a
/// quotation mark or one of a character outside ASCII. Everything else could name a file or a
/// program.
bool isWebAddress(std::string_view address);

/// Opens the address in the user's browser; see `openWithDefaultApp`. Does nothing and returns
/// false when `isWebAddress` says no: the address may come from anybody.
bool openWebAddress(const std::string& address);

}  // namespace app
