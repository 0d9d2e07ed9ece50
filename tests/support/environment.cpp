#include "tests/support/environment.h"

#include <cstdlib>

namespace test {

ScopedEnvironment::~ScopedEnvironment() {
  for (const auto& [name, value] : saved_) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }
}

void ScopedEnvironment::remember(const std::string& name) {
  if (saved_.count(name)) return;
  const char* value = std::getenv(name.c_str());
  saved_[name] = value ? std::optional<std::string>(value) : std::nullopt;
}

void ScopedEnvironment::set(const std::string& name, const std::string& value) {
  remember(name);
  setenv(name.c_str(), value.c_str(), 1);
}

void ScopedEnvironment::unset(const std::string& name) {
  remember(name);
  unsetenv(name.c_str());
}

PrivateHome::PrivateHome() {
  environment_.set("HOME", directory_.path());
  environment_.set("XDG_CONFIG_HOME", directory_ / ".config");
  environment_.set("XDG_DATA_HOME", directory_ / ".local/share");
  environment_.set("XDG_CACHE_HOME", directory_ / ".cache");
  environment_.set("XDG_STATE_HOME", directory_ / ".local/state");
  environment_.set("XDG_RUNTIME_DIR", directory_ / ".run");
  // Nobody listens there: no test asks anything outside the machine.
  environment_.set("HEAPGAUGE_UPDATE_URL", "http://127.0.0.1:9/");
  for (const char* name :
       {"HEAPGAUGE_THEME", "GTK_THEME", "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"}) {
    environment_.unset(name);
  }
}

}  // namespace test
