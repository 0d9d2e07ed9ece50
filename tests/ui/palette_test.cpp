#include "ui/palette.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <string_view>

#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"
#include "tests/ui/contrast.h"

namespace test {
namespace {

constexpr auto kPreferDark = "[Settings]\ngtk-application-prefer-dark-theme=1\n";
constexpr auto kPreferLight = "[Settings]\ngtk-application-prefer-dark-theme=0\n";

/// A home without settings and an environment that says nothing about themes.
class DetectPalette : public ::testing::Test {
 protected:
  DetectPalette() {
    environment_.unset("HEAPGAUGE_THEME");
    environment_.unset("GTK_THEME");
  }

  static bool dark() { return ui::detectPalette().dark; }
  void set(const std::string& name, const std::string& value) { environment_.set(name, value); }
  void unset(const std::string& name) { environment_.unset(name); }

  std::string gtk4Path() const { return home_.path() + "/.config/gtk-4.0/settings.ini"; }
  std::string gtk3Path() const { return home_.path() + "/.config/gtk-3.0/settings.ini"; }
  void writeGtk4(std::string_view content) const { writeFile(gtk4Path(), content); }
  void writeGtk3(std::string_view content) const { writeFile(gtk3Path(), content); }

  /// Whether a gtk-4.0 file of just this content makes the palette dark.
  bool darkWithGtk4(std::string_view content) const {
    writeGtk4(content);
    return dark();
  }

 private:
  PrivateHome home_;
  ScopedEnvironment environment_;
};

TEST(Palette, HasItsLightColours) {
  const ui::Palette expected = {false,      0xFFF6F5F4, 0xFFFFFFFF, 0xFFEAE9E8,
                                0xFFDCDBDA, 0xFFD0CFCE, 0xFF202022, 0xFF6A6A70,
                                0xFF3584E4, 0xFFFFFFFF, 0xFF3584E4, 0xFFFFFFFF};
  EXPECT_EQ(ui::kLightPalette, expected);
}

TEST(Palette, HasItsDarkColours) {
  const ui::Palette expected = {true,       0xFF242428, 0xFF2E2E33, 0xFF3A3A40,
                                0xFF45454C, 0xFF44444A, 0xFFEAEAEE, 0xFF9A9AA4,
                                0xFF3584E4, 0xFFFFFFFF, 0xFF62A0EA, 0xFF1C1C20};
  EXPECT_EQ(ui::kDarkPalette, expected);
}

TEST_F(DetectPalette, IsLightWhenNothingSaysOtherwise) {
  EXPECT_EQ(ui::detectPalette(), ui::kLightPalette);
}

TEST_F(DetectPalette, ReturnsTheWholeDarkPalette) {
  set("HEAPGAUGE_THEME", "dark");
  EXPECT_EQ(ui::detectPalette(), ui::kDarkPalette);
}

TEST_F(DetectPalette, PutsItsOwnVariableBeforeAllElse) {
  set("HEAPGAUGE_THEME", "light");
  set("GTK_THEME", "Adwaita:dark");
  writeGtk4(kPreferDark);
  writeGtk3(kPreferDark);
  EXPECT_FALSE(dark());
}

TEST_F(DetectPalette, TakesDarkFromItsOwnVariableBeforeFilesThatSayLight) {
  set("HEAPGAUGE_THEME", "dark");
  writeGtk4(kPreferLight);
  EXPECT_TRUE(dark());
}

TEST_F(DetectPalette, IgnoresOtherValuesOfItsOwnVariable) {
  for (const char* value : {"", "Dark", "DARK", "dark ", "darker", "1"}) {
    set("HEAPGAUGE_THEME", value);
    EXPECT_FALSE(dark()) << value;
  }
  writeGtk4(kPreferDark);
  for (const char* value : {"", "Light", "light ", "0"}) {
    set("HEAPGAUGE_THEME", value);
    EXPECT_TRUE(dark()) << value;
  }
}

TEST_F(DetectPalette, IsDarkWhenGtkThemeContainsDark) {
  writeGtk4(kPreferLight);
  for (const char* value : {"dark", "Adwaita:dark", "Yaru-dark-blue"}) {
    set("GTK_THEME", value);
    EXPECT_TRUE(dark()) << value;
  }
}

TEST_F(DetectPalette, GoesOnToTheFilesWhenGtkThemeDoesNotContainDark) {
  for (const char* value : {"", "Adwaita", "Adwaita-Dark"}) {
    set("GTK_THEME", value);
    EXPECT_FALSE(dark()) << value;
  }
  writeGtk4(kPreferDark);
  for (const char* value : {"", "Adwaita", "Adwaita-Dark"}) {
    set("GTK_THEME", value);
    EXPECT_TRUE(dark()) << value;
  }
}

TEST_F(DetectPalette, IsDarkWhenTheGtk4FileSaysSo) {
  writeGtk4(kPreferDark);
  writeGtk3(kPreferLight);
  EXPECT_TRUE(dark());
}

TEST_F(DetectPalette, StopsAtAGtk4FileThatHasTheKey) {
  writeGtk3(kPreferDark);
  for (const char* value : {"false", "0", "", "yes", "2"}) {
    EXPECT_FALSE(darkWithGtk4(std::string("gtk-application-prefer-dark-theme=") + value)) << value;
  }
}

TEST_F(DetectPalette, GoesOnToTheGtk3FileWhenTheGtk4FileLacksTheKey) {
  writeGtk3(kPreferDark);
  EXPECT_TRUE(darkWithGtk4("[Settings]\ngtk-theme-name=Adwaita\n"));
  EXPECT_TRUE(darkWithGtk4(""));
}

TEST_F(DetectPalette, TakesTheGtk3FileWhenThereIsNoOther) {
  writeGtk3(kPreferDark);
  EXPECT_TRUE(dark());
  writeGtk3("gtk-theme-name=Adwaita-dark\n");
  EXPECT_TRUE(dark());
  writeGtk3(kPreferLight);
  EXPECT_FALSE(dark());
}

TEST_F(DetectPalette, TakesOneAndTrueForDarkAndNothingElse) {
  const std::string key = "gtk-application-prefer-dark-theme=";
  for (const char* value : {"1", "true", "TRUE", "True"}) {
    EXPECT_TRUE(darkWithGtk4(key + value)) << value;
  }
  for (const char* value :
       {"", "0", "11", "01", "yes", "dark", "truex", "\"true\"", "true#", "=1"}) {
    EXPECT_FALSE(darkWithGtk4(key + value)) << value;
  }
}

TEST_F(DetectPalette, IgnoresBlanksAndCaseInFiles) {
  EXPECT_TRUE(darkWithGtk4("gtk-application-prefer-dark-theme = TRUE"));
  EXPECT_TRUE(darkWithGtk4("\t GTK-Application-Prefer-Dark-Theme\t=\t1 \r\n"));
  EXPECT_TRUE(darkWithGtk4("gtk-application-prefer-dark-theme=t r\tu\re"));
  EXPECT_TRUE(darkWithGtk4("  Gtk-Theme-Name = Some DA RK theme\r\n"));
}

TEST_F(DetectPalette, FindsDarkAnywhereInAThemeName) {
  for (const char* name : {"dark", "Adwaita-Dark", "Yaru-dark", "Darkness", "Nordarkic"}) {
    EXPECT_TRUE(darkWithGtk4(std::string("gtk-theme-name=") + name)) << name;
  }
  EXPECT_FALSE(darkWithGtk4("gtk-theme-name=Adwaita"));
  EXPECT_FALSE(darkWithGtk4("gtk-theme-name="));
}

TEST_F(DetectPalette, LetsOneDarkLineDecideForTheFile) {
  EXPECT_TRUE(darkWithGtk4("gtk-theme-name=Yaru-dark\ngtk-application-prefer-dark-theme=0\n"));
  EXPECT_TRUE(darkWithGtk4("gtk-application-prefer-dark-theme=0\ngtk-theme-name=Yaru-dark\n"));
  EXPECT_TRUE(
      darkWithGtk4("gtk-application-prefer-dark-theme=1\ngtk-application-prefer-dark-theme=0\n"));
  EXPECT_TRUE(darkWithGtk4("gtk-theme-name=Yaru-dark\ngtk-theme-name=Yaru\n"));
}

TEST_F(DetectPalette, SkipsWhatItDoesNotKnow) {
  EXPECT_FALSE(
      darkWithGtk4("# gtk-theme-name=dark\n"
                   ";gtk-application-prefer-dark-theme=1\n"
                   "[dark]\n"
                   "gtk-icon-theme-name=Papirus-Dark\n"
                   "xgtk-application-prefer-dark-theme=1\n"
                   "gtk-application-prefer-dark-theme\n"
                   "gtk-application-prefer-dark-theme:1\n"));
  // None of these lines counts as having the key either.
  writeGtk3(kPreferDark);
  EXPECT_TRUE(dark());
}

TEST_F(DetectPalette, AsksForNoSection) {
  EXPECT_TRUE(darkWithGtk4("gtk-application-prefer-dark-theme=1"));
  EXPECT_TRUE(darkWithGtk4("[Other]\ngtk-application-prefer-dark-theme=1"));
}

TEST_F(DetectPalette, ReadsOnPastBytesThatAreNoText) {
  const std::string junk("\xff\xfe\x00\x01=\n\n==\n[\n\x80\n", 13);
  EXPECT_FALSE(darkWithGtk4(junk));
  EXPECT_TRUE(darkWithGtk4(junk + kPreferDark));
  EXPECT_TRUE(darkWithGtk4(std::string(1 << 20, 'x') + "\n" + kPreferDark));
}

TEST_F(DetectPalette, CountsAFileThatCannotBeReadAsMissing) {
  writeGtk3(kPreferDark);
  makeDirectory(gtk4Path());
  EXPECT_TRUE(dark());
}

TEST_F(DetectPalette, DoesNotWaitForAPipeInPlaceOfTheFile) {
  makeDirectory(gtk4Path().substr(0, gtk4Path().rfind('/')));
  ASSERT_EQ(::mkfifo(gtk4Path().c_str(), 0600), 0);
  writeGtk3(kPreferDark);
  EXPECT_TRUE(dark());
}

TEST_F(DetectPalette, LooksWhereXdgConfigHomePoints) {
  const TempDirectory elsewhere;
  writeFile(elsewhere / "gtk-4.0/settings.ini", kPreferDark);
  set("XDG_CONFIG_HOME", elsewhere.path());
  EXPECT_TRUE(dark());
}

TEST_F(DetectPalette, LeavesTheHomeAloneWhenXdgConfigHomeIsSet) {
  writeGtk4(kPreferDark);
  const TempDirectory elsewhere;
  set("XDG_CONFIG_HOME", elsewhere.path());
  EXPECT_FALSE(dark());
}

TEST_F(DetectPalette, LooksInTheHomeWhenXdgConfigHomeIsUnsetOrEmpty) {
  writeGtk4(kPreferDark);
  set("XDG_CONFIG_HOME", "");
  EXPECT_TRUE(dark());
  unset("XDG_CONFIG_HOME");
  EXPECT_TRUE(dark());
}

TEST_F(DetectPalette, ReadsNoFileWithoutAHome) {
  // The account's own settings, which the home directory of its entry would lead to, stay unread.
  writeGtk4(kPreferDark);
  unset("XDG_CONFIG_HOME");
  set("HOME", "");
  EXPECT_FALSE(dark());
  unset("HOME");
  EXPECT_FALSE(dark());
}

// Contrast.

TEST(Contrast, IsThatOfTheGuidelines) {
  EXPECT_NEAR(contrast(0xFF000000, 0xFFFFFFFF), 21.0, 1e-9);
  EXPECT_NEAR(contrast(0xFF777777, 0xFFFFFFFF), 4.48, 0.005);
}

TEST(ControlOutline, IsSeenOnEverySurface) {
  for (const ui::Palette& palette : {ui::kLightPalette, ui::kDarkPalette}) {
    for (const ui::Colour surface :
         {palette.window, palette.view, palette.raised, palette.pressed, palette.base}) {
      EXPECT_GE(contrast(ui::controlOutline(palette), surface), 3.0)
          << std::hex << surface << (palette.dark ? " dark" : " light");
    }
  }
}

}  // namespace
}  // namespace test
