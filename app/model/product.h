#pragma once

#include "ui/single_instance.h"

namespace app {

/// The program's name as people read it.
inline constexpr char kProductName[] = "Heap Gauge";
/// The version that "--version" prints; the build's own project version is the same, and a test
/// compares them.
inline constexpr char kProductVersion[] = "1.1.1";
/// The end of its desktop entry's file name; who distributes it may put something before.
inline constexpr char kDesktopEntry[] = "heapgauge.desktop";
/// What the program is for.
inline constexpr char kProductDescription[] =
    "Find out where your disk space went. Scans a folder or a whole volume in parallel and shows "
    "the results as they arrive, with a treemap of every file and four measures of size — "
    "including "
    "what has only appeared recently.";
/// Where people read about it and get it.
inline constexpr char kProductPage[] = "https://heapgauge.example/";
/// Who makes it, and where people read about them.
inline constexpr char kMakerName[] = "Varnick Apps";
inline constexpr char kMakerPage[] = "https://varnick-apps.example/";
/// By which instances of the program on one display find each other.
inline constexpr ui::InstanceNames kInstanceNames = {.selection = "_HEAPGAUGE_INSTANCE",
                                                     .property = "_HEAPGAUGE_OPEN_PATH"};

}  // namespace app
