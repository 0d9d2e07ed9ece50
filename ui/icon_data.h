#pragma once

#include <cstddef>
#include <span>

namespace ui {

/// The bytes of packaging/icons/heapgauge.png as they were when the program was built; they live as
/// long as the process.
std::span<const std::byte> embeddedIcon();

}  // namespace ui
