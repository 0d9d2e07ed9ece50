#include "tests/app/actions/fake_program.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "tests/support/eventually.h"

namespace test {

FakePrograms::FakePrograms(RestOfPath rest) {
  const char* path = std::getenv("PATH");
  environment_.set("PATH", rest == RestOfPath::Kept
                               ? directory_.path() + ":" + (path ? path : "/bin:/usr/bin")
                               : directory_.path());
}

void FakePrograms::add(const std::string& name, const std::string& lines) {
  writeFile(directory_ / name, "#!/bin/sh\n" + lines + "\n");
  chmod((directory_ / name).c_str(), 0700);
}

void FakePrograms::addRecorder(const std::string& name) {
  // Each argument ends with a NUL, which none can contain, and the file has its name once it is
  // whole.
  const std::string record = directory_ / (name + ".arguments");
  add(name, "for argument; do printf '%s\\0' \"$argument\"; done > '" + record +
                ".part'\n/bin/mv '" + record + ".part' '" + record + "'");
}

bool FakePrograms::wasStarted(const std::string& name) const {
  return access((directory_ / (name + ".arguments")).c_str(), F_OK) == 0;
}

std::vector<std::string> FakePrograms::argumentsOf(const std::string& name) const {
  if (!eventually([&] { return wasStarted(name); })) {
    throw std::runtime_error(name + " was not started");
  }
  const std::string text = readFile(directory_ / (name + ".arguments"));
  std::vector<std::string> arguments;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find('\0', start);
    arguments.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return arguments;
}

}  // namespace test
