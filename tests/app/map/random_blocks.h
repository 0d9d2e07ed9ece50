#pragma once

#include <random>

#include "app/map/treemap_layout.h"

namespace test {

app::TreemapBlock blockOf(const app::MapRect& rect, const app::CushionCoefficients& cushion = {});
double uniform(std::mt19937_64& random, double from, double to);
/// Of a block in `rect`: as the layout makes them, flat, steep, towards the light or at the edge of
/// the shadow.
app::CushionCoefficients randomCushion(std::mt19937_64& random, const app::MapRect& rect);

}  // namespace test
