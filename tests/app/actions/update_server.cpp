#include "tests/app/actions/update_server.h"

#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "tests/support/eventually.h"

namespace test {

std::string programOnPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::istringstream directories(path ? path : "");
  for (std::string directory; std::getline(directories, directory, ':');) {
    const std::string program = directory + "/" + name;
    if (access(program.c_str(), X_OK) == 0) return program;
  }
  return {};
}

UpdateServer::UpdateServer(const std::string& answer) {
  for (const char* proxy : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"}) {
    environment_.unset(proxy);
  }
  setAnswer(answer);
  server_.emplace(std::vector<std::string>{"python3", UPDATE_SERVER_SCRIPT, directory_.path()});
  const std::string port = directory_ / "port";
  const bool ended = !eventually(
      [&] { return access(port.c_str(), F_OK) == 0 || server_->exitStatus().has_value(); });
  if (ended || server_->exitStatus()) throw std::runtime_error("the server does not start");
  port_ = readFile(port);
}

void UpdateServer::setAnswer(const std::string& answer) const {
  writeFile(directory_ / "answer", answer);
}

std::string UpdateServer::address(const std::string& path) const {
  return "http://127.0.0.1:" + port_ + "/" + path;
}

std::vector<std::string> UpdateServer::requests() const {
  const std::string log = directory_ / "requests";
  if (access(log.c_str(), F_OK) != 0) return {};
  std::istringstream text(readFile(log));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

}  // namespace test
