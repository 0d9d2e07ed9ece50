#pragma once

#include <functional>
#include <string>
#include <vector>

namespace test {

/// Whether anything, a link that leads nowhere included, lies at the path.
bool exists(const std::string& path);

/// The names in a directory, sorted; none when it is missing.
std::vector<std::string> namesIn(const std::string& directory);

/// The path that a record names, read the way another program would: the line that begins with
/// "Path=", decoded. Empty when there is none.
std::string pathInRecord(const std::string& recordFile);

/// Mounts an empty file system in memory at `path`, a directory. For `inPrivateMounts`. Throws
/// std::system_error.
void mountMemory(const std::string& path, const std::string& options = {});

/// `inPrivateMounts` as the last statement of a test: expects that `body` found nothing wrong, or
/// skips the test where there are no such mounts.
void expectInPrivateMounts(const std::function<std::string()>& body);

}  // namespace test
