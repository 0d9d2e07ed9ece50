#pragma once

namespace app {

/// The program's name as people read it.
inline constexpr char kProductName[] = "Heap Gauge";
/// The version that "--version" prints; the build's own project version is the same, and a test
/// compares them.
inline constexpr char kProductVersion[] = "1.1.1";

}  // namespace app
