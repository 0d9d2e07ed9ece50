#pragma once

#include <sys/mman.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace sizewalk {

/// One field of every node: an array that grows a page at a time and never moves.
///
/// Element i lives at page i >> PageShift, slot i & kPageMask. The table of pages is made up front
/// for the greatest length the column may reach, so neither table nor pages are ever reallocated
/// and a reader may keep reading while the writer grows the column. A std::deque would move its
/// map, and one reservation of the whole address range would show as gigabytes in every memory
/// display. Pages come from mmap: the kernel hands them out zeroed, and a page costs memory only
/// where it is touched.
///
/// Threads: one writer. A reader may touch elements that the writer published (release) and it saw
/// (acquire); fields that change after that are read with `load` and written with `store` and
/// `add`.
template <typename T, unsigned PageShift = 16>
class PagedColumn {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  static constexpr std::size_t kPageLength = std::size_t{1} << PageShift;
  static constexpr std::size_t kPageMask = kPageLength - 1;

  /// `capacity`: the greatest number of elements the column may ever hold.
  explicit PagedColumn(std::uint64_t capacity)
      : pageCount_(static_cast<std::size_t>(capacity >> PageShift) + 1),
        pages_(std::make_unique<T*[]>(pageCount_)) {}

  ~PagedColumn() {
    for (std::size_t i = 0; i < grownPages_; ++i) munmap(pages_[i], kPageLength * sizeof(T));
  }
  PagedColumn(const PagedColumn&) = delete;
  PagedColumn& operator=(const PagedColumn&) = delete;

  /// Makes elements [0, length) reachable, zero where they were not written. Writer only.
  /// `length` may not exceed the capacity. Throws std::bad_alloc when the kernel has no page to
  /// give; the column is then as it was, apart from pages gained on the way.
  void grow(std::uint64_t length) {
    const auto needed = static_cast<std::size_t>((length + kPageMask) >> PageShift);
    while (grownPages_ < needed) {
      void* page = mmap(nullptr, kPageLength * sizeof(T), PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
      if (page == MAP_FAILED) throw std::bad_alloc();
      pages_[grownPages_++] = static_cast<T*>(page);
    }
  }

  /// Number of elements that the pages gained so far can hold. Writer only.
  std::uint64_t grownLength() const { return std::uint64_t{grownPages_} << PageShift; }

  /// Plain access: for the writer before it publishes the element, and for fields that never change
  /// after.
  T& operator[](std::uint64_t i) { return pages_[i >> PageShift][i & kPageMask]; }
  const T& operator[](std::uint64_t i) const { return pages_[i >> PageShift][i & kPageMask]; }

  /// Gives an element that was never written its first value. A page that gets none but zeros costs
  /// no memory.
  void initialise(std::uint64_t i, T value) {
    if (value != T{}) (*this)[i] = value;
  }

  /// Access to fields that change while others read them.
  T load(std::uint64_t i, std::memory_order order = std::memory_order_relaxed) const {
    return std::atomic_ref<T>(slot(i)).load(order);
  }
  void store(std::uint64_t i, T value, std::memory_order order = std::memory_order_relaxed) {
    std::atomic_ref<T>(slot(i)).store(value, order);
  }
  /// Adds with wrap-around. A load and a store: with one writer nothing can come between. Nothing
  /// to add touches nothing: most folders on the way up have no use for most sums.
  void add(std::uint64_t i, T value) {
    if (value != T{}) store(i, static_cast<T>(load(i) + value));
  }

 private:
  T& slot(std::uint64_t i) const { return pages_[i >> PageShift][i & kPageMask]; }

  std::size_t pageCount_;
  std::size_t grownPages_ = 0;
  std::unique_ptr<T*[]> pages_;
};

}  // namespace sizewalk
