#include "app/actions/update_request.h"

#include <cstdlib>

#include "app/actions/process.h"
#include "app/model/product.h"

namespace app {

namespace {

std::string endpoint() {
  const char* const wanted = std::getenv("HEAPGAUGE_UPDATE_URL");
  if (wanted && *wanted) return wanted;
  return HEAPGAUGE_UPDATE_SERVER "/api/latest-version";
}

std::string userAgent() { return std::string("Heapgauge/") + kProductVersion + " (linux)"; }

}  // namespace

std::string updateAddress() {
  return endpoint() + "?platform=linux" + "&version=" + kProductVersion;
}

std::vector<std::string> curlCommand(const std::string& address) {
  return {"curl",
          "--silent",
          "--show-error",
          "--fail",
          "--location",
          "--max-redirs",
          "3",
          "--max-time",
          "10",
          "--user-agent",
          userAgent(),
          "--header",
          "Accept: application/json",
          address};
}

std::vector<std::string> wgetCommand(const std::string& address) {
  return {"wget",
          "--quiet",
          "--output-document=-",
          "--timeout=10",
          "--tries=1",
          "--max-redirect=3",
          "--user-agent=" + userAgent(),
          "--header=Accept: application/json",
          address};
}

std::string fetchUpdateAnswer(const std::string& address) {
  const std::string answer = runCapture(curlCommand(address));
  return answer.empty() ? runCapture(wgetCommand(address)) : answer;
}

}  // namespace app
