#pragma once

namespace test {

// Programs whose tests use these link `test_scarcity`, which stands in for the C library's
// functions.

/// Lets this process start so many threads more and then none, for the scope.
class FewThreads {
 public:
  explicit FewThreads(int left);
  ~FewThreads();
  FewThreads(const FewThreads&) = delete;
  FewThreads& operator=(const FewThreads&) = delete;
};

/// Counts the threads that this process starts, for the scope.
class ThreadStarts {
 public:
  ThreadStarts();
  int count() const;

 private:
  const int before_;
};

/// Keeps the next thread that this process starts from being started, and no other.
class FirstThreadFails {
 public:
  FirstThreadFails();
  ~FirstThreadFails();
  FirstThreadFails(const FirstThreadFails&) = delete;
  FirstThreadFails& operator=(const FirstThreadFails&) = delete;
};

/// Has the kernel give so many anonymous maps of memory more, as what trees are made of, and then
/// none, for the scope. The heap is another thing.
class FewPages {
 public:
  explicit FewPages(int left);
  ~FewPages();
  FewPages(const FewPages&) = delete;
  FewPages& operator=(const FewPages&) = delete;
};

}  // namespace test
