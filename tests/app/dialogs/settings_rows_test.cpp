#include "app/dialogs/settings_rows.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_directory.h"

namespace app {
namespace {

class SettingsRowsTest : public testing::Test {
 protected:
  std::string file() const { return directory_.path() + "/heapgauge/settings.ini"; }
  std::string stored() const { return test::readFile(file()); }
  static bool saved(const SettingsStore& store) {
    return store.awaitSaved(std::chrono::steady_clock::now() + std::chrono::seconds(20));
  }
  /// Settings as the file says them; a new program.
  SettingsStore reopened() const { return SettingsStore(directory_.path()); }
  std::vector<bool> values() const {
    std::vector<bool> values;
    for (const SettingsRow& row : rows_) values.push_back(row.get());
    return values;
  }

  test::TempDirectory directory_;
  SettingsStore store_ = reopened();
  const std::vector<SettingsRow> rows_ = settingsRows(store_);
};

TEST_F(SettingsRowsTest, SayWhatTheSettingsDo) {
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"Show space occupied on disk",
       "Rather than the length of a file's contents. The two differ where sparse files and "
       "compression are involved."},
      {"Put the list above the map", "Rather than beside it."},
      {"Consistent colours per file kind",
       "A file type looks the same in every scan. Off, the biggest kinds in this scan get the "
       "most distinct hues."},
      {"Show free space",
       "Draw the volume's free space as a block, to size the scanned folder against the room left "
       "on it."},
      {"Show other space in use",
       "Everything else on the volume, as a block. Nothing to show when a whole volume is on "
       "screen."},
      {"Show the file kinds table", ""},
      {"Check for updates at launch",
       "The only network request this program makes. It carries nothing about what was scanned."}};
  std::vector<std::pair<std::string, std::string>> said;
  for (const SettingsRow& row : rows_) said.emplace_back(row.title, row.explanation);
  EXPECT_EQ(said, expected);
}

TEST_F(SettingsRowsTest, BeginWithTheDefaults) {
  EXPECT_EQ(values(), (std::vector<bool>{true, false, true, false, false, true, true}));
}

TEST_F(SettingsRowsTest, EachReadsAndWritesItsOwnSetting) {
  const Setting settings[] = {setting::kShowPhysicalFileSize,  setting::kSplitHorizontally,
                              setting::kConsistentKindColours, setting::kShowFreeSpace,
                              setting::kShowOtherSpace,        setting::kShowFileKinds,
                              setting::kCheckForUpdates};
  ASSERT_EQ(rows_.size(), std::size(settings));
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    std::vector<bool> expected = values();
    expected[i] = !expected[i];
    rows_[i].set(expected[i]);
    ASSERT_TRUE(saved(store_));
    EXPECT_EQ(values(), expected);
    EXPECT_EQ(reopened().get(settings[i]), expected[i]) << settings[i].key;
  }
}

TEST_F(SettingsRowsTest, FlippedTwiceLeaveTheFileAsItWas) {
  for (const SettingsRow& row : rows_) row.set(row.get());
  ASSERT_TRUE(saved(store_));
  const std::string before = stored();
  for (const SettingsRow& row : rows_) {
    row.set(!row.get());
    ASSERT_TRUE(saved(store_));
    EXPECT_NE(stored(), before) << row.title;
    row.set(!row.get());
    ASSERT_TRUE(saved(store_));
    EXPECT_EQ(stored(), before) << row.title;
  }
}

TEST_F(SettingsRowsTest, AreAllResetInTheFileToo) {
  const std::vector<bool> defaults = values();
  for (const SettingsRow& row : rows_) row.set(!row.get());
  resetAll(store_);
  ASSERT_TRUE(saved(store_));
  EXPECT_EQ(values(), defaults);
  SettingsStore again = reopened();
  for (std::size_t i = 0; const SettingsRow& row : settingsRows(again)) {
    EXPECT_EQ(row.get(), defaults[i++]) << row.title;
  }
}

TEST_F(SettingsRowsTest, ResetFromTheDefaultsWriteNothing) {
  resetAll(store_);
  ASSERT_TRUE(saved(store_));
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(SettingsRowsTest, ResetKeepWhatElseIsInTheFile) {
  test::writeFile(file(), "[Heapgauge]\nNewerSetting=17\nShowFreeSpace=true\n");
  SettingsStore store = reopened();
  resetAll(store);
  ASSERT_TRUE(saved(store));
  EXPECT_EQ(stored(), "[Heapgauge]\nNewerSetting=17\nShowFreeSpace=false\n");
}

}  // namespace
}  // namespace app
