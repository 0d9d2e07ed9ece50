#include "tests/app/map/random_blocks.h"

#include <cmath>

namespace test {

using app::CushionCoefficients;
using app::MapRect;
using app::TreemapBlock;

TreemapBlock blockOf(const MapRect& rect, const CushionCoefficients& cushion) {
  TreemapBlock block;
  block.rect = rect;
  block.cushion = cushion;
  return block;
}

double uniform(std::mt19937_64& random, double from, double to) {
  return std::uniform_real_distribution<double>(from, to)(random);
}

CushionCoefficients randomCushion(std::mt19937_64& random, const MapRect& rect) {
  CushionCoefficients cushion;
  switch (random() % 4) {
    case 0:  // as the layout makes them
      for (int level = 0; level < 5; ++level) addRidge(rect, uniform(random, 0, 0.4), &cushion);
      break;
    case 1: {  // flat up to steep
      const double scale = std::pow(10, uniform(random, -6, 3));
      cushion = {uniform(random, -scale, scale), uniform(random, -scale, scale),
                 uniform(random, -scale, scale), uniform(random, -scale, scale)};
      break;
    }
    case 2:  // towards the light, where the factor is about 1
      cushion = {uniform(random, -0.001, 0.001), uniform(random, -0.001, 0.001),
                 uniform(random, 0, 0.6), uniform(random, 0, 0.6)};
      break;
    default:  // at the edge of the shadow, where the cosine is about 0
      cushion = {uniform(random, -1e-4, 1e-4), uniform(random, -1e-4, 1e-4), -4, 0};
      cushion.linearX += uniform(random, -0.01, 0.01);
      break;
  }
  return cushion;
}

}  // namespace test
