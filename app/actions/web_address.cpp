#include "app/actions/web_address.h"

#include <algorithm>
#include <cstddef>

#include "app/actions/desktop.h"

namespace app {

namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isAddressByte(char c) {
  constexpr std::string_view kMarks = "-._~:/?#[]@!$&'()*+,;=%";
  return (lowered(c) >= 'a' && lowered(c) <= 'z') || (c >= '0' && c <= '9') ||
         kMarks.find(c) != std::string_view::npos;
}

/// How many bytes of `address` are `scheme`, which is all of it or nothing.
std::size_t schemeLength(std::string_view address, std::string_view scheme) {
  const bool same = address.size() >= scheme.size() &&
                    std::equal(scheme.begin(), scheme.end(), address.begin(),
                               [](char wanted, char c) { return wanted == lowered(c); });
  return same ? scheme.size() : 0;
}

}  // namespace

bool isWebAddress(std::string_view address) {
  const std::size_t scheme = schemeLength(address, "http://") + schemeLength(address, "https://");
  if (scheme == 0 || scheme == address.size()) return false;
  const char hostBegin = address[scheme];
  constexpr std::string_view kNoHost = "/?#";
  return kNoHost.find(hostBegin) == std::string_view::npos &&
         std::all_of(address.begin(), address.end(), isAddressByte);
}

bool openWebAddress(const std::string& address) {
  return isWebAddress(address) && openWithDefaultApp(address);
}

}  // namespace app
