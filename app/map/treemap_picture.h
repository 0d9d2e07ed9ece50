#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "app/map/background_render.h"
#include "app/map/picture_in_bands.h"
#include "app/map/selection_outlines.h"
#include "app/map/treemap_render.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "app/model/preview_budget.h"
#include "sizewalk/file_tree.h"
#include "ui/canvas.h"
#include "ui/connection.h"
#include "ui/geometry.h"
#include "ui/server_image.h"

namespace app {

/// The picture of the focused folder with the outlines of what is selected. Keeps the last
/// one and makes a new one only when what it shows or its size has changed: at once when it is to
/// show something else, in the background when the tree has only grown, or only the size has
/// changed while it grows; its pixels are sent to the X server once. Those of a large one from the
/// background are sent in bands, so that the window thread has turns for its user in between; until
/// the last one is there the picture before it stays, on the screen and to all who ask. Window
/// thread only.
class TreemapPicture {
 public:
  /// A picture was made in the background: the next `update` shows it.
  std::function<void()> onRendered;
  /// A part of such a picture was sent to the X server, which took so long.
  std::function<void(std::chrono::steady_clock::duration took)> onPartSent;

  /// Both outlive the picture. Each picture takes `colours` as they are when it is begun; that they
  /// have changed does not by itself make a new one due. Without `post` nothing is made in the
  /// background.
  TreemapPicture(ui::Connection& connection, const KindColours& colours,
                 BackgroundRender::Post post = {});

  /// Shows `focus` of `tree`, or nothing when `tree` is null. Until the next `update` the last
  /// picture of that tree stays; that of another one goes at once.
  void show(std::shared_ptr<const sizewalk::FileTree> tree, sizewalk::NodeId focus);
  void setMeasure(const MeasureSettings& measure);
  /// Takes part in every picture from now on, whatever is in focus. True when that is a change.
  bool setExtraBlocks(std::vector<ExtraBlock> blocks);
  /// Dims every block but those of `kind`; none when there is none.
  void setHighlight(std::optional<sizewalk::KindIndex> kind);
  /// Outlines these items, as far as the picture shows them and they are large enough.
  /// They are in ascending order.
  void setSelected(std::span<const sizewalk::NodeId> nodes);
  void setOutlineStyle(const OutlineStyle& style) { outlineStyle_ = style; }
  /// Something else is to be seen: the next `update` makes a new picture.
  void markDirty() { dirty_ = true; }
  /// The tree has changed, or what is beside it: an `update` begins a new picture. Until it is
  /// there the last one stays.
  void markOutdated() { outdated_ = true; }
  /// While the tree keeps growing, pauses between pictures leave the time to what makes it grow. A
  /// picture that is being made when it grows no more is given up: the last one is not to wait for
  /// it.
  void setGrowing(bool growing);
  /// An `update` would begin a picture in the background, or send again what the server had no room
  /// for.
  bool due() const;
  /// A picture is being made in the background, or to be made.
  bool behind() const;

  /// Gives the picture its place in the window.
  void setRect(const ui::Rect& rect) { rect_ = rect; }
  const ui::Rect& rect() const { return rect_; }

  /// Makes or begins a new picture if one is due, and sends it when it is there; of the last one
  /// sends what another selection has changed. Call it before painting. True when it sent a whole
  /// one. Without memory for that the picture stays due.
  bool update();
  /// Draws the last picture.
  void paint(ui::Canvas& canvas) const;

  /// Another number whenever other pixels may be seen.
  std::uint64_t version() const { return version_; }

  const sizewalk::FileTree* tree() const { return tree_.get(); }
  const MeasureSettings& measure() const { return measure_; }
  const RenderedTreemap& rendered() const { return rendered_; }
  /// The colours of the picture that is seen, for all that is seen beside it; while there is none,
  /// those of the next one.
  const KindColours& shownColours() const;

 private:
  bool fits() const;
  bool renderDue() const;
  bool isSeen() const;
  bool makesInBackground() const;
  bool canWait() const;
  bool nextBegun() const;
  bool makeAndSend();
  bool isWanted(const RenderedTreemap& picture) const;
  void recycle(RenderedTreemap old);
  static void letGo(RenderedTreemap old);
  void unlessMemoryRunsOut(const std::function<void()>& step);
  void sendInBands(RenderedTreemap picture);
  void postNextBand();
  void sendNextBand();
  bool showArrived();
  bool replaceBy(RenderedTreemap next);
  void showMade();
  bool showSent();
  void giveUpNext();
  void beginInBackground();
  void renderNow();
  void renderInBackground();
  void noteFailure();
  void take(RenderedTreemap picture);
  void send();
  void sendWhereSelectionChanged();
  std::span<const std::uint32_t> plainPixels() const;
  void findOutlines();
  std::vector<ui::Rect> followSelection();
  void sendPart(const ui::Rect& part);

  const KindColours& colours_;
  std::shared_ptr<const sizewalk::FileTree> tree_;
  sizewalk::NodeId focus_ = sizewalk::kRootNode;
  MeasureSettings measure_;
  std::vector<ExtraBlock> extraBlocks_;
  std::optional<sizewalk::KindIndex> highlight_;
  ui::Rect rect_;
  /// What is to be seen is something else than the last picture: the next one is made at once.
  bool dirty_ = false;
  /// It is the same, but has changed since: the next picture is made in the background.
  bool outdated_ = false;
  /// The pixels with the server are not those to be seen.
  bool unsent_ = false;
  /// The server had no room for the pixels that were sent last.
  bool refused_ = false;
  RenderedTreemap rendered_;
  /// Memory for the next picture; shows nothing.
  RenderedTreemap spare_;
  ui::ServerImage image_;
  std::uint64_t version_ = 0;
  std::vector<std::uint32_t> dimmed_;
  OutlineStyle outlineStyle_;
  /// What is selected, in ascending order.
  std::vector<sizewalk::NodeId> selected_;
  /// What was when the picture was sent, and by its places the outlines, empty where there is none.
  std::vector<sizewalk::NodeId> sentSelected_;
  std::vector<ui::Rect> outlines_;
  /// Pixels with outlines on them, on their way to the server.
  std::vector<std::uint32_t> outlined_;
  ui::Connection& connection_;
  const BackgroundRender::Post post_;
  BackgroundRender background_;
  /// From the background, until the next update.
  std::optional<RenderedTreemap> made_;
  /// The same where it is large, on its way to the server or there.
  std::shared_ptr<PictureInBands> arriving_;
  /// What was begun in the background last shows more of a growing tree and is nothing that the
  /// user has asked for.
  bool preview_ = false;
  /// Pictures in the background, one after the other, for which there was no memory.
  int failures_ = 0;
  bool growing_ = false;
  /// What pictures of the growing tree may cost.
  PreviewBudget budget_;
};

}  // namespace app
