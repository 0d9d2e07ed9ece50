// Dialogs while the keyboard is not in use: where it is shows nowhere.

#include <functional>

#include "app/dialogs/about_dialog.h"
#include "app/dialogs/settings_dialog.h"
#include "tests/app/dialogs/folder_chooser_fixture.h"
#include "tests/support/temp_directory.h"
#include "ui/keys.h"

namespace app {
namespace {

class HiddenDialogRingsTest : public FolderChooserTest {
 protected:
  /// `tabs` times Tab in `dialog`, and nothing looks different.
  void expectNoRings(ui::Dialog& dialog, int tabs) {
    const auto withoutRings = [&] {
      dialog.prepare();
      return ViewsOnWindow::picture(kWidth, kHeight, [&](ui::Canvas& canvas) {
        canvas.setShowsRings(false);
        dialog.paint(canvas);
      });
    };
    const test::Picture hidden = withoutRings();
    for (int i = 0; i < tabs; ++i) {
      const int before = dialog.focusedControl();
      dialog.key({.keysym = ui::key::kTab, .text = {}});
      ASSERT_NE(dialog.focusedControl(), before);
      EXPECT_TRUE(withoutRings() == hidden) << i;
    }
  }
};

TEST_F(HiddenDialogRingsTest, AreHiddenInTheChooser) { expectNoRings(*chooser, 5); }

TEST_F(HiddenDialogRingsTest, AreHiddenInTheAboutBox) {
  AboutDialog about(*connection, style);
  about.setRect({0, 0, kWidth, kHeight});
  expectNoRings(about, 3);
}

TEST_F(HiddenDialogRingsTest, AreHiddenInTheSettings) {
  test::TempDirectory configuration;
  SettingsStore store(configuration.path());
  SettingsDialog settings(*connection, style, store);
  settings.setRect({0, 0, kWidth, kHeight});
  expectNoRings(settings, 3);
}

}  // namespace
}  // namespace app
