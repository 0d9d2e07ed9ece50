#include "app/dialogs/settings_rows.h"

#include <string_view>

#include "app/model/settings.h"

namespace app {

namespace {

struct Described {
  Setting setting;
  std::string_view title;
  std::string_view explanation;
};

constexpr Described kSettings[] = {
    {setting::kShowPhysicalFileSize, "Show space occupied on disk",
     "Rather than the length of a file's contents. The two differ where sparse files and "
     "compression are involved."},
    {setting::kSplitHorizontally, "Put the list above the map", "Rather than beside it."},
    {setting::kConsistentKindColours, "Consistent colours per file kind",
     "A file type looks the same in every scan. Off, the biggest kinds in this scan get the most "
     "distinct hues."},
    {setting::kShowFreeSpace, "Show free space",
     "Draw the volume's free space as a block, to size the scanned folder against the room left "
     "on it."},
    {setting::kShowOtherSpace, "Show other space in use",
     "Everything else on the volume, as a block. Nothing to show when a whole volume is on "
     "screen."},
    {setting::kShowFileKinds, "Show the file kinds table", ""},
    {setting::kCheckForUpdates, "Check for updates at launch",
     "The only network request this program makes. It carries nothing about what was scanned."},
};

}  // namespace

std::vector<SettingsRow> settingsRows(SettingsStore& store) {
  std::vector<SettingsRow> rows;
  for (const Described& described : kSettings) {
    const Setting setting = described.setting;
    rows.push_back({.title = std::string(described.title),
                    .explanation = std::string(described.explanation),
                    .get = [&store, setting] { return store.get(setting); },
                    .set = [&store, setting](bool on) { store.setBool(setting.key, on); }});
  }
  return rows;
}

void resetAll(SettingsStore& store) {
  for (const Described& described : kSettings) {
    const auto& [key, fallback] = described.setting;
    if (store.getBool(key, fallback) != fallback) store.setBool(key, fallback);
  }
}

}  // namespace app
