// What a frame of a scan costs while very much is selected: 20,000 items, all of which the map
// shows with an outline of three lines each, against none. A frame is all that the window does for
// it, state, list, table, map and status line, until the X server has drawn it.
//
// Two kinds of frames: one in which the pointer has come onto another item of the map, and one in
// which one item more or less is selected.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/frame/scan_screen.h"
#include "bench/support/paired_timing.h"
#include "bench/support/row.h"
#include "sizewalk/file_tree.h"
#include "tests/support/x_server.h"
#include "ui/back_buffer.h"
#include "ui/connection.h"
#include "ui/palette.h"
#include "ui/x11.h"

namespace {

using sizewalk::NodeId;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr std::uint32_t kItems = 20'000;
constexpr std::size_t kFrames = 101;

/// One folder of as many files, of a few sizes.
std::shared_ptr<sizewalk::FileTree> makeTree() {
  auto tree = std::make_shared<sizewalk::FileTree>();
  tree->createRoot("/bench");
  sizewalk::DirectoryResult result;
  result.reset(sizewalk::kRootNode);
  for (std::uint32_t i = 0; i < kItems; ++i) {
    const std::string name = "f" + std::to_string(i);
    sizewalk::EntryRecord entry;
    entry.nameOffset = static_cast<std::uint32_t>(result.names.size());
    entry.nameLength = static_cast<std::uint16_t>(name.size());
    entry.kind = static_cast<sizewalk::KindIndex>(4 + i % 20);
    entry.apparentSize = entry.allocatedSize = 10'000 + i % 7 * 1000;
    entry.itemCount = 1;
    result.names.insert(result.names.end(), name.begin(), name.end());
    result.entries.push_back(entry);
  }
  std::vector<NodeId> folders;
  tree->addChildren(result, &folders);
  return tree;
}

/// The window of a scan, painted into a pixmap as the window's back buffer is.
class Frames {
 public:
  Frames() {
    if (!connection_) throw std::runtime_error("no connection to the X server");
    screen_.setRect({0, 0, kWidth, kHeight});
    screen_.show(tree_);
    draw();
  }
  ~Frames() {
    screen_.show(nullptr);
    XFreeGC(display(), gc_);
  }
  Frames(const Frames&) = delete;
  Frames& operator=(const Frames&) = delete;

  void selectAll() {
    std::vector<NodeId> nodes(kItems);
    for (std::uint32_t i = 0; i < kItems; ++i) {
      nodes[i] = tree_->firstChild(sizewalk::kRootNode) + i;
    }
    screen_.selection().replace(nodes);
    draw();
  }

  /// From one item of the map to another.
  void move() {
    const ui::Rect& map = screen_.layout().map;
    step_ = (step_ + 97) % 1000;
    const int x = map.x + 20 + step_ * (map.w - 40) / 1000;
    screen_.motion({.x = x, .y = map.y + map.h / 2});
    draw();
  }

  void change() {
    screen_.selection().toggle(tree_->firstChild(sizewalk::kRootNode) + kItems / 2);
    draw();
  }

 private:
  Display* display() const { return connection_->native().display; }

  void draw() {
    screen_.prepare();
    const ui::PaintTarget target = {buffer_->pixmap(), buffer_->draw(), gc_, kWidth, kHeight};
    ui::Canvas canvas(*connection_, target);
    canvas.pushClip({0, 0, kWidth, kHeight});
    screen_.paint(canvas);
    canvas.popClip();
    XSync(display(), False);
  }

  const std::unique_ptr<ui::Connection> connection_ = ui::Connection::open();
  const std::unique_ptr<ui::BackBuffer> buffer_ = ui::BackBuffer::create(
      *connection_, RootWindow(display(), connection_->native().screen), kWidth, kHeight);
  const GC gc_ = ui::makeGc(display(), buffer_->pixmap());
  const ui::Style style_{*connection_, ui::kLightPalette};
  const std::shared_ptr<sizewalk::FileTree> tree_ = makeTree();
  app::KindColours colours_{true};
  app::ScanScreen screen_{*connection_, style_, colours_};
  int step_ = 0;
};

void report(const std::string& what, const bench::PairedTiming& timing) {
  const double ratio = 1 / timing.speedup;
  bench::printRow("a frame with 20,000 items selected, 1920 x 1080, against one with none, " + what,
                  bench::milliseconds(timing.candidateMs), bench::milliseconds(timing.baselineMs),
                  bench::times(ratio), "at most 1.50");
}

}  // namespace

int main() {
  const test::XServer server({.width = kWidth, .height = kHeight});
  Frames plain;
  Frames selected;
  selected.selectAll();
  report("the pointer comes onto another",
         bench::timePaired(
             kFrames, [&] { plain.move(); }, [&] { selected.move(); }));
  report("one more or less is selected",
         bench::timePaired(
             kFrames, [&] { plain.change(); }, [&] { selected.change(); }));
  return 0;
}
