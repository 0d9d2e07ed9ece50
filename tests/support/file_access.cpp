#include "tests/support/file_access.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <thread>

namespace test {

namespace {

constexpr std::uint32_t kOverrides = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

struct Capabilities {
  __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct data[2] = {};
};

void check(long outcome) {
  if (outcome != 0) throw std::system_error(errno, std::generic_category(), "capabilities");
}

Capabilities current() {
  Capabilities now;
  check(syscall(SYS_capget, &now.header, now.data));
  return now;
}

}  // namespace

OrdinaryFileAccess::OrdinaryFileAccess() {
  Capabilities now = current();
  effective_ = {now.data[0].effective, now.data[1].effective};
  now.data[0].effective &= ~kOverrides;
  check(syscall(SYS_capset, &now.header, now.data));
}

OrdinaryFileAccess::~OrdinaryFileAccess() {
  Capabilities now = current();
  now.data[0].effective = effective_[0];
  now.data[1].effective = effective_[1];
  syscall(SYS_capset, &now.header, now.data);
}

void asOrdinaryUser(const std::function<void()>& act) {
  std::jthread([&] {
    Capabilities now = current();
    now.data[0].effective &= ~kOverrides;
    now.data[0].permitted &= ~kOverrides;
    check(syscall(SYS_capset, &now.header, now.data));
    act();
  });
}

}  // namespace test
