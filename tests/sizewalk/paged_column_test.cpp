#include "sizewalk/paged_column.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <new>
#include <vector>

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

/// Pages of memory that the elements [0, length) occupy; they begin at the start of one.
template <typename T>
std::ptrdiff_t residentPages(PagedColumn<T>* column, std::size_t length) {
  const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t bytes = length * sizeof(T);
  std::vector<unsigned char> resident((bytes + pageSize - 1) / pageSize);
  EXPECT_EQ(mincore(&(*column)[0], bytes, resident.data()), 0);
  return std::ranges::count_if(resident, [](unsigned char bits) { return (bits & 1) != 0; });
}

TEST(PagedColumn, CostsNoMemoryWhereAllIsZero) {
  constexpr std::size_t kLength = PagedColumn<std::uint64_t>::kPageLength;
  PagedColumn<std::uint64_t> column(kLength);
  column.grow(kLength);
  for (std::size_t i = 0; i < kLength; ++i) column.initialise(i, 0);
  EXPECT_EQ(residentPages(&column, kLength), 0);

  column.initialise(kLength / 2, 7);
  EXPECT_EQ(column[kLength / 2], 7u);
  EXPECT_EQ(residentPages(&column, kLength), 1);
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
