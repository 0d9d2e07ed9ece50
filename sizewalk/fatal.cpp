#include "sizewalk/fatal.h"

#include <unistd.h>

#include <cstdio>

namespace sizewalk {

void endProgram(const char* message) noexcept {
  std::fprintf(stderr, "%s\n", message);
  _exit(1);
}

}  // namespace sizewalk
