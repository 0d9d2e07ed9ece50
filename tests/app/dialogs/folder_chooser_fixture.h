#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/dialogs/folder_chooser.h"
#include "tests/app/dialogs/slow_folders.h"
#include "tests/support/temp_directory.h"
#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace app {

using test::at;
using test::rgb;
using Told = std::vector<std::string>;

constexpr int kWidth = 1100;
constexpr int kHeight = 720;

class FolderChooserTest : public testing::Test, protected test::ViewsOnWindow {
 protected:
  explicit FolderChooserTest(const ui::Palette& palette = ui::kLightPalette, double scale = 1)
      : ViewsOnWindow(palette, scale) {
    for (const char* name : {"Music", "a", "b", "bb", "c"}) makeFolder(name);
    makeFolder("b/inner/innermost");
    makeFolder("hidden/.one");
    test::writeFile(home + "/file");
    show(kWidth, kHeight);
    open();
  }

  void makeFolder(const std::string& name) const { test::makeDirectory(home + "/" + name); }

  /// Opens a chooser at the home folder and waits for what is in it.
  void open() { open({{"Home", home}, {"Filesystem", "/"}, {"Other", home + "/b"}}); }
  void open(std::vector<FolderPlace> places) {
    chooser.reset();  // two of them do not share a reader
    chooser = std::make_unique<FolderChooser>(style, std::move(places), reader);
    chooser->onChosen = [this](const std::string& path) { told.push_back("scan " + path); };
    chooser->onClosed = [this] { told.emplace_back("closed"); };
    chooser->setRect({0, 0, kWidth, kHeight});
    EXPECT_TRUE(answered());
  }
  bool answered() {
    return chooser->subFolders() || runUntil([&] { return chooser->subFolders().has_value(); });
  }

  void press(const ui::Rect& rect, int clicks = 1, int button = 1) {
    ui::MouseEvent event = at(rect, button);
    event.clicks = clicks;
    chooser->press(event);
    chooser->release(event);
    const bool answers = !chooser->path().ends_with("slow");
    ASSERT_TRUE(!answers || answered());
  }
  void pressRow(std::size_t row, int clicks = 1, int button = 1) {
    press(chooser->listColumn().rowRect(row), clicks, button);
  }
  void pressPlace(std::size_t row) { press(chooser->placesColumn().rowRect(row)); }
  void key(ui::key::Keysym keysym, bool ctrl = false, bool shift = false) {
    chooser->key({.keysym = keysym, .text = {}, .shift = shift, .ctrl = ctrl});
    ASSERT_TRUE(answered());
  }
  void type(const std::string& text) {
    for (const char c : text) {
      chooser->key(
          {.keysym = static_cast<unsigned char>(c), .text = {}, .typed = std::string(1, c)});
    }
  }

  std::string path() const { return chooser->path(); }
  Told names() const {
    Told names;
    for (const SubFolder& folder : chooser->subFolders()->folders) names.push_back(folder.name);
    return names;
  }
  std::optional<std::string> selectedName() const {
    if (!chooser->selected()) return std::nullopt;
    return chooser->subFolders()->folders.at(*chooser->selected()).name;
  }
  Told taken() { return std::exchange(told, {}); }

  test::Picture picture() {
    return ViewsOnWindow::picture(kWidth, kHeight,
                                  [&](ui::Canvas& canvas) { chooser->paint(canvas); });
  }
  test::Picture pictureOf(const ui::Rect& rect) {
    return picture().part(rect.x, rect.y, rect.w, rect.h);
  }
  /// The colour of a place or row left of its text.
  std::uint32_t ground(const ui::Rect& rect) {
    return picture().at(rect.x + 4, rect.y + rect.h / 2);
  }
  /// Whether the text of a row has this colour: its boldest pixels do.
  bool hasInk(const ui::Rect& rect, ui::Colour colour) {
    return pictureOf(rect).count(rgb(colour)) > 0;
  }

  const std::string home = directory / "home";
  Told told;
  test::SlowFolders slow;
  SubFolderReader reader{[this](ui::Task task) { window.post(std::move(task)); }, slow.read()};
  std::unique_ptr<FolderChooser> chooser;
};

class DarkFolderChooserTest : public FolderChooserTest {
 protected:
  DarkFolderChooserTest() : FolderChooserTest(ui::kDarkPalette) {}
};

}  // namespace app
