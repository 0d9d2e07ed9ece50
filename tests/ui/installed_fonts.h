#pragma once

#include <map>
#include <string>
#include <vector>

#include "ui/fonts.h"

namespace test {

/// For a scope, fontconfig knows of these font files only, and of `meanings`: which family is meant
/// by a general name such as "sans-serif". Its one other rule scales glyphs that are pictures to
/// the size asked for. Fonts already open stay open.
class InstalledFonts {
 public:
  explicit InstalledFonts(const std::vector<std::string>& files,
                          const std::map<std::string, std::string>& meanings = {});
  ~InstalledFonts();
  InstalledFonts(const InstalledFonts&) = delete;
  InstalledFonts& operator=(const InstalledFonts&) = delete;
};

/// The file of the upright face of a family that this machine has; throws std::runtime_error when
/// it has none.
std::string fontFile(const std::string& family, ui::FontWeight weight = ui::FontWeight::Regular);

/// The file of a font with coloured emoji; empty when this machine has none.
std::string colourEmojiFile();

}  // namespace test
