#pragma once

namespace bench {

/// How long the host of a virtual machine has kept its processors from it so far, in the kernel's
/// ticks of 10 ms.
long stolenTicks();

}  // namespace bench
