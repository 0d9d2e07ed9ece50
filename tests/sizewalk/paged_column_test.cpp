#include "sizewalk/paged_column.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <new>

namespace sizewalk {
namespace {

/// Addresses that this process has mapped, in bytes.
std::uint64_t mappedBytes() {
  std::ifstream statm("/proc/self/statm");
  std::uint64_t pages = 0;
  statm >> pages;
  return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

TEST(PagedColumn, GivesItsPagesBack) {
  constexpr std::uint64_t kLength = std::uint64_t{1} << 27;  // 1 GB, none of it touched
  const std::uint64_t before = mappedBytes();
  {
    PagedColumn<std::uint64_t> column(kLength);
    column.grow(kLength);
    ASSERT_GE(mappedBytes(), before + kLength * sizeof(std::uint64_t));
  }
  EXPECT_LT(mappedBytes(), before + kLength);
}

TEST(PagedColumn, StartsEveryElementAtZeroAndNeverMovesIt) {
  PagedColumn<std::uint32_t, 4> column(1000);
  column.grow(1);
  column[0] = 7;
  const std::uint32_t* const address = &column[0];
  column.grow(900);
  EXPECT_EQ(&column[0], address);
  EXPECT_EQ(column[0], 7u);
  for (std::uint64_t i = 1; i < 900; ++i) ASSERT_EQ(column[i], 0u);
}

TEST(PagedColumn, GrowsByWholePagesOnlyWhenTheyAreReached) {
  PagedColumn<std::uint8_t, 4> column(1000);
  EXPECT_EQ(column.grownLength(), 0u);
  column.grow(16);
  EXPECT_EQ(column.grownLength(), 16u);
  column.grow(17);
  EXPECT_EQ(column.grownLength(), 32u);
  column.grow(5);
  EXPECT_EQ(column.grownLength(), 32u);
}

TEST(PagedColumn, AddsWithWrapAround) {
  PagedColumn<std::uint64_t> column(10);
  column.grow(1);
  column.add(0, 5);
  column.add(0, std::uint64_t{0} - 2);
  EXPECT_EQ(column.load(0), 3u);
}

TEST(PagedColumn, RaisesOutOfMemoryWhenTheKernelHasNoPage) {
  PagedColumn<std::uint64_t, 50> column(10);  // a page of 2^53 bytes, beyond any address space
  EXPECT_THROW(column.grow(1), std::bad_alloc);
  EXPECT_EQ(column.grownLength(), 0u);
}

}  // namespace
}  // namespace sizewalk
