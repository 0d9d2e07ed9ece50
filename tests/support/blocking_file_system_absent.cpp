// Where there is no libfuse3 to build the file system with.

#include "tests/support/blocking_file_system.h"

namespace test {

class BlockingFileSystem::Server {};

BlockingFileSystem::BlockingFileSystem() : problem_("built without libfuse3") {}
BlockingFileSystem::~BlockingFileSystem() = default;
void BlockingFileSystem::breakListing(const std::string& /*name*/, int /*entries*/) {}
void BlockingFileSystem::hold(Request /*request*/, const std::string& /*name*/) {}
void BlockingFileSystem::release() {}
void BlockingFileSystem::fail() {}
bool BlockingFileSystem::waitUntilHeld() const { return false; }
int BlockingFileSystem::held() const { return 0; }
int BlockingFileSystem::openings(const std::string& /*name*/) const { return 0; }

}  // namespace test
