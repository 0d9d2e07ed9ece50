#pragma once

#include "ui/single_instance.h"

namespace app {

/// The program's name as people read it.
inline constexpr char kProductName[] = "Heap Gauge";
/// The version that "--version" prints; the build's own project version is the same, and a test
/// compares them.
inline constexpr char kProductVersion[] = "1.1.1";
/// By which instances of the program on one display find each other.
inline constexpr ui::InstanceNames kInstanceNames = {.selection = "_HEAPGAUGE_INSTANCE",
                                                     .property = "_HEAPGAUGE_OPEN_PATH"};

}  // namespace app
