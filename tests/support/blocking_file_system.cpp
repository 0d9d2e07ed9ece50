#define FUSE_USE_VERSION 34

#include "tests/support/blocking_file_system.h"

#include <fcntl.h>
#include <fuse_lowlevel.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace test {

namespace {

struct Entry {
  fuse_ino_t inode;
  fuse_ino_t parent;
  std::string_view name;
  off_t bytes;  // 0 for folders
};

/// The root is its own parent.
constexpr Entry kEntries[] = {
    {FUSE_ROOT_ID, FUSE_ROOT_ID, "", 0},
    {2, FUSE_ROOT_ID, "folder", 0},
    {3, 2, "inside", 1000},
    {4, FUSE_ROOT_ID, "top", 2000},
};

const Entry& entryOf(fuse_ino_t inode) {
  return *std::ranges::find(kEntries, inode, &Entry::inode);
}

const Entry* childOf(fuse_ino_t parent, std::string_view name) {
  const auto* found = std::ranges::find_if(kEntries, [&](const Entry& entry) {
    return entry.inode != FUSE_ROOT_ID && entry.parent == parent && entry.name == name;
  });
  return found == std::end(kEntries) ? nullptr : found;
}

fuse_ino_t inodeAt(std::string_view path) {
  fuse_ino_t inode = FUSE_ROOT_ID;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    inode = childOf(inode, path.substr(0, end))->inode;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return inode;
}

struct stat statusOf(const Entry& entry) {
  struct stat status {};
  status.st_ino = entry.inode;
  status.st_mode = entry.bytes > 0 ? S_IFREG | 0644 : S_IFDIR | 0755;
  status.st_nlink = entry.bytes > 0 ? 1 : 2;
  status.st_size = entry.bytes;
  status.st_blocks = (entry.bytes + 511) / 512;
  status.st_uid = getuid();
  status.st_gid = getgid();
  return status;
}

}  // namespace

/// A process that unmounts should this one be killed, so that no dead mount stays behind.
class Undertaker {
 public:
  explicit Undertaker(const std::string& mountPoint) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
    child_ = fork();
    if (child_ == 0) {
      close(ends[1]);
      waitAndUnmount(ends[0], mountPoint.c_str());
    }
    close(ends[0]);
    alive_ = ends[1];
  }
  /// Lets the process go when there is nothing left to unmount.
  ~Undertaker() {
    if (alive_ < 0) return;
    [[maybe_unused]] const ssize_t written = write(alive_, "", 1);
    close(alive_);
    if (child_ > 0) waitpid(child_, nullptr, 0);
  }
  Undertaker(const Undertaker&) = delete;
  Undertaker& operator=(const Undertaker&) = delete;

 private:
  /// Other threads may hold locks: system calls only.
  [[noreturn]] static void waitAndUnmount(int parent, const char* mountPoint) {
    char byte = 0;
    ssize_t got = 0;
    do {
      got = read(parent, &byte, 1);
    } while (got < 0 && errno == EINTR);
    if (got == 0 && umount2(mountPoint, MNT_DETACH) != 0) {
      execlp("fusermount3", "fusermount3", "-u", "-z", "-q", mountPoint, nullptr);
    }
    _exit(0);
  }

  pid_t child_ = -1;
  int alive_ = -1;
};

/// Answers what the kernel asks, on a thread of its own.
class BlockingFileSystem::Server {
 public:
  explicit Server(const std::string& mountPoint);
  ~Server();
  bool mounted() const { return mounted_; }

  void breakListing(fuse_ino_t inode, int entries);
  void hold(Request request, fuse_ino_t inode);
  void answerAll(int error);
  bool waitUntilHeld();
  int held();
  int openings(fuse_ino_t inode);

 private:
  using Answer = std::function<void(fuse_req_t)>;
  struct Waiting {
    fuse_req_t request;
    Answer answer;
  };
  struct Held {
    Request request;
    fuse_ino_t inode;
  };

  static Server& of(fuse_req_t request) {
    return *static_cast<Server*>(fuse_req_userdata(request));
  }
  static fuse_lowlevel_ops operations();
  static void lookUp(fuse_req_t request, fuse_ino_t parent, const char* name);
  static void getStatus(fuse_req_t request, fuse_ino_t inode, fuse_file_info* file);
  static void open(fuse_req_t request, fuse_ino_t inode, fuse_file_info* file);
  static void list(fuse_req_t request, fuse_ino_t inode, std::size_t bytes, off_t offset,
                   fuse_file_info* file);
  static void interrupted(fuse_req_t request, void* server);

  void run();
  void answer(Request kind, fuse_ino_t inode, fuse_req_t request, Answer answer);
  void giveUpInterrupted();
  std::optional<int> breakOf(fuse_ino_t inode);

  const Undertaker undertaker_;
  fuse_session* session_ = nullptr;
  bool mounted_ = false;
  const int stop_ = eventfd(0, EFD_CLOEXEC);
  std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  std::optional<Held> toHold_;
  int error_ = 0;                     // the answer to everything, if not 0
  std::map<fuse_ino_t, int> listed_;  // by folder, after how many entries its listing breaks off
  std::map<fuse_ino_t, int> openings_;
  std::vector<Waiting> waiting_;
  /// Those of `waiting_` that nobody waits for any more.
  std::vector<fuse_req_t> interrupted_;
  std::thread thread_;
};

fuse_lowlevel_ops BlockingFileSystem::Server::operations() {
  fuse_lowlevel_ops operations{};
  operations.lookup = &Server::lookUp;
  operations.getattr = &Server::getStatus;
  operations.opendir = &Server::open;
  operations.readdir = &Server::list;
  return operations;
}

BlockingFileSystem::Server::Server(const std::string& mountPoint) : undertaker_(mountPoint) {
  const fuse_lowlevel_ops implemented = operations();
  char name[] = "test";
  char* arguments[] = {name};
  fuse_args options = FUSE_ARGS_INIT(1, arguments);
  session_ = fuse_session_new(&options, &implemented, sizeof implemented, this);
  fuse_opt_free_args(&options);
  mounted_ = session_ && fuse_session_mount(session_, mountPoint.c_str()) == 0;
  if (mounted_) thread_ = std::thread([this] { run(); });
}

BlockingFileSystem::Server::~Server() {
  if (thread_.joinable()) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(stop_, &one, sizeof one);
    thread_.join();
    answerAll(EIO);
    fuse_session_unmount(session_);
  }
  if (session_) fuse_session_destroy(session_);
  close(stop_);
}

void BlockingFileSystem::Server::run() {
  fuse_buf buffer{};
  while (true) {
    std::array<pollfd, 2> ends = {{{fuse_session_fd(session_), POLLIN, 0}, {stop_, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0 && errno == EINTR) continue;
    if (ends[1].revents != 0) break;
    const int got = fuse_session_receive_buf(session_, &buffer);
    if (got == -EINTR || got == -EAGAIN) continue;
    if (got <= 0) break;
    fuse_session_process_buf(session_, &buffer);
    giveUpInterrupted();
  }
  free(buffer.mem);
}

void BlockingFileSystem::Server::answer(Request kind, fuse_ino_t inode, fuse_req_t request,
                                        Answer answer) {
  std::unique_lock lock(mutex_);
  if (toHold_ && toHold_->request == kind && toHold_->inode == inode) {
    waiting_.push_back({request, std::move(answer)});
    changed_.notify_all();
    lock.unlock();  // it may be interrupted by now
    fuse_req_interrupt_func(request, &Server::interrupted, this);
    return;
  }
  if (error_ != 0) {
    fuse_reply_err(request, error_);
  } else {
    answer(request);
  }
}

// Libfuse is in the middle of something with the request: the answer follows.
void BlockingFileSystem::Server::interrupted(fuse_req_t request, void* server) {
  auto& self = *static_cast<Server*>(server);
  const std::lock_guard lock(self.mutex_);
  self.interrupted_.push_back(request);
}

void BlockingFileSystem::Server::giveUpInterrupted() {
  const std::lock_guard lock(mutex_);
  for (const fuse_req_t request : std::exchange(interrupted_, {})) {
    const auto given = std::ranges::find(waiting_, request, &Waiting::request);
    if (given == waiting_.end()) continue;
    waiting_.erase(given);
    fuse_reply_err(request, EINTR);
  }
}

void BlockingFileSystem::Server::breakListing(fuse_ino_t inode, int entries) {
  const std::lock_guard lock(mutex_);
  listed_[inode] = entries;
}

std::optional<int> BlockingFileSystem::Server::breakOf(fuse_ino_t inode) {
  const std::lock_guard lock(mutex_);
  const auto found = listed_.find(inode);
  return found == listed_.end() ? std::nullopt : std::optional(found->second);
}

void BlockingFileSystem::Server::hold(Request request, fuse_ino_t inode) {
  const std::lock_guard lock(mutex_);
  toHold_ = Held{request, inode};
}

void BlockingFileSystem::Server::answerAll(int error) {
  const std::lock_guard lock(mutex_);
  toHold_.reset();
  error_ = error;
  for (const Waiting& waiting : std::exchange(waiting_, {})) {
    if (error != 0) {
      fuse_reply_err(waiting.request, error);
    } else {
      waiting.answer(waiting.request);
    }
  }
}

bool BlockingFileSystem::Server::waitUntilHeld() {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return !waiting_.empty(); });
}

int BlockingFileSystem::Server::held() {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(waiting_.size());
}

int BlockingFileSystem::Server::openings(fuse_ino_t inode) {
  const std::lock_guard lock(mutex_);
  return openings_[inode];
}

void BlockingFileSystem::Server::lookUp(fuse_req_t request, fuse_ino_t parent, const char* name) {
  const Entry* entry = childOf(parent, name);
  if (!entry) {
    fuse_reply_err(request, ENOENT);
    return;
  }
  of(request).answer(Request::Examine, entry->inode, request, [entry](fuse_req_t to) {
    fuse_entry_param found{};
    found.ino = entry->inode;
    found.attr = statusOf(*entry);
    fuse_reply_entry(to, &found);
  });
}

void BlockingFileSystem::Server::getStatus(fuse_req_t request, fuse_ino_t inode,
                                           fuse_file_info* /*file*/) {
  of(request).answer(Request::Examine, inode, request, [inode](fuse_req_t to) {
    const struct stat status = statusOf(entryOf(inode));
    fuse_reply_attr(to, &status, 0);
  });
}

void BlockingFileSystem::Server::open(fuse_req_t request, fuse_ino_t inode, fuse_file_info* file) {
  {
    const std::lock_guard lock(of(request).mutex_);
    ++of(request).openings_[inode];
  }
  fuse_reply_open(request, file);
}

void BlockingFileSystem::Server::list(fuse_req_t request, fuse_ino_t inode, std::size_t bytes,
                                      off_t offset, fuse_file_info* /*file*/) {
  const std::optional<int> breaksOff = of(request).breakOf(inode);
  if (breaksOff && offset >= *breaksOff) {
    fuse_reply_err(request, EIO);
    return;
  }
  of(request).answer(Request::List, inode, request, [=](fuse_req_t to) {
    std::vector<char> records(bytes);
    std::size_t used = 0;
    off_t number = 0;
    for (const Entry& entry : kEntries) {
      if (entry.inode == FUSE_ROOT_ID || entry.parent != inode || ++number <= offset) continue;
      if (breaksOff && number > *breaksOff) break;
      const struct stat status = statusOf(entry);
      const std::size_t needed = fuse_add_direntry(to, records.data() + used, bytes - used,
                                                   entry.name.data(), &status, number);
      if (needed > bytes - used) break;
      used += needed;
    }
    fuse_reply_buf(to, records.data(), used);
  });
}

BlockingFileSystem::BlockingFileSystem() {
  makeDirectory(mountPoint_);
  if (access("/dev/fuse", R_OK | W_OK) != 0) {
    problem_ = std::string("/dev/fuse: ") + std::strerror(errno);
    return;
  }
  server_ = std::make_unique<Server>(mountPoint_);
  if (server_->mounted()) return;
  problem_ = "a file system of user space cannot be mounted here";
  server_.reset();
}

BlockingFileSystem::~BlockingFileSystem() = default;

void BlockingFileSystem::breakListing(const std::string& name, int entries) {
  server_->breakListing(inodeAt(name), entries);
}

void BlockingFileSystem::hold(Request request, const std::string& name) {
  server_->hold(request, inodeAt(name));
}

void BlockingFileSystem::release() { server_->answerAll(0); }
void BlockingFileSystem::fail() { server_->answerAll(EIO); }
bool BlockingFileSystem::waitUntilHeld() const { return server_->waitUntilHeld(); }
int BlockingFileSystem::held() const { return server_->held(); }
int BlockingFileSystem::openings(const std::string& name) const {
  return server_->openings(inodeAt(name));
}

}  // namespace test
