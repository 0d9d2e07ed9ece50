#include "ui/palette.h"

#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "base/files.h"

namespace ui {

namespace {

/// Empty when the variable is not set: none of those read here tells the two apart.
std::string environmentValue(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

/// Empty when there is none. Unlike the program's own files, which fall back on the account's home,
/// a desktop's settings are looked for only where the session points.
std::string configurationDirectory() {
  std::string configHome = environmentValue("XDG_CONFIG_HOME");
  if (!configHome.empty()) return configHome;
  const std::string home = environmentValue("HOME");
  return home.empty() ? "" : home + "/.config";
}

/// `line` without blanks and in lower case, so that "Key = TRUE" and "key=true" are the same. By
/// hand for ASCII only, so that the locale has no say.
std::string normalised(std::string_view line) {
  std::string result;
  for (const char c : line) {
    if (c == ' ' || c == '\t' || c == '\r') continue;
    result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return result;
}

/// What a settings file of the desktop's toolkit says about the theme.
struct GtkSettings {
  bool saysDark = false;
  bool hasPreferDarkKey = false;
};

GtkSettings parseGtkSettings(const std::string& content) {
  constexpr std::string_view kPreferDark = "gtk-application-prefer-dark-theme=";
  constexpr std::string_view kThemeName = "gtk-theme-name=";
  GtkSettings settings;
  std::istringstream lines(content);
  for (std::string raw; std::getline(lines, raw);) {
    const std::string line = normalised(raw);
    if (line.starts_with(kPreferDark)) {
      settings.hasPreferDarkKey = true;
      const auto value = std::string_view(line).substr(kPreferDark.size());
      if (value == "1" || value == "true") settings.saysDark = true;
    } else if (line.starts_with(kThemeName)) {
      if (line.find("dark", kThemeName.size()) != std::string::npos) settings.saysDark = true;
    }
  }
  return settings;
}

GtkSettings readGtkSettings(const std::string& relativePath) {
  const std::string directory = configurationDirectory();
  if (directory.empty()) return {};
  const std::optional<std::string> content = base::readWholeFile(directory + "/" + relativePath);
  return content ? parseGtkSettings(*content) : GtkSettings{};
}

bool wantsDark() {
  const std::string own = environmentValue("HEAPGAUGE_THEME");
  if (own == "dark") return true;
  if (own == "light") return false;

  if (environmentValue("GTK_THEME").find("dark") != std::string::npos) return true;

  const GtkSettings gtk4 = readGtkSettings("gtk-4.0/settings.ini");
  if (gtk4.saysDark || gtk4.hasPreferDarkKey) return gtk4.saysDark;
  return readGtkSettings("gtk-3.0/settings.ini").saysDark;
}

}  // namespace

Palette detectPalette() { return wantsDark() ? kDarkPalette : kLightPalette; }

}  // namespace ui
