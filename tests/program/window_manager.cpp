#include "tests/program/window_manager.h"

#include <algorithm>
#include <stdexcept>

#include "tests/support/eventually.h"
#include "tests/support/other_client.h"

namespace test {

WindowManager::SystemDirectories::SystemDirectories() {
  environment.set("XDG_CONFIG_DIRS", "/etc/xdg");
  environment.set("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
}

WindowManager::WindowManager() : child_({"openbox", "--sm-disable"}) {
  OtherClient client;
  // It says that it is there (_NET_SUPPORTING_WM_CHECK) before it looks after windows.
  const unsigned long window = client.showWindow();
  if (!eventually([&] {
        return std::ranges::count(client.longProperty(client.root(), "_NET_CLIENT_LIST"), window);
      })) {
    throw std::runtime_error("openbox does not manage windows; is it installed?");
  }
}

}  // namespace test
