#include "tests/ui/installed_fonts.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <stdexcept>

namespace test {

namespace {

struct Destroy {
  void operator()(FcConfig* config) const { FcConfigDestroy(config); }
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
  void operator()(FcFontSet* fonts) const { FcFontSetDestroy(fonts); }
  void operator()(FcObjectSet* objects) const { FcObjectSetDestroy(objects); }
};
template <typename T>
using Ptr = std::unique_ptr<T, Destroy>;

/// What this machine has, whatever fontconfig is made to believe meanwhile.
FcConfig* machine() {
  static const Ptr<FcConfig> config(FcInitLoadConfigAndFonts());
  return config.get();
}

const FcChar8* bytes(const std::string& text) {
  return reinterpret_cast<const FcChar8*>(text.c_str());
}

std::string property(const FcPattern* pattern, const char* name) {
  FcChar8* value = nullptr;
  if (FcPatternGetString(pattern, name, 0, &value) != FcResultMatch) return {};
  return reinterpret_cast<const char*>(value);
}

constexpr const char* kScalePictures = R"(
  <match target="font">
    <test name="outline"><bool>false</bool></test>
    <edit name="matrix" mode="assign">
      <times>
        <name>matrix</name>
        <matrix>
          <divide><name target="pattern">pixelsize</name><name target="font">pixelsize</name></divide>
          <double>0</double>
          <double>0</double>
          <divide><name target="pattern">pixelsize</name><name target="font">pixelsize</name></divide>
        </matrix>
      </times>
    </edit>
  </match>)";

std::string rules(const std::map<std::string, std::string>& meanings) {
  std::string text = std::string("<fontconfig>") + kScalePictures;
  for (const auto& [name, family] : meanings) {
    text += "<alias binding='same'><family>" + name + "</family><prefer><family>" + family +
            "</family></prefer></alias>";
  }
  return text + "</fontconfig>";
}

}  // namespace

InstalledFonts::InstalledFonts(const std::vector<std::string>& files,
                               const std::map<std::string, std::string>& meanings) {
  const Ptr<FcConfig> config(FcConfigCreate());
  if (!FcConfigParseAndLoadFromMemory(config.get(), bytes(rules(meanings)), FcTrue)) {
    throw std::runtime_error("fontconfig does not take the rules");
  }
  for (const std::string& file : files) {
    if (!FcConfigAppFontAddFile(config.get(), bytes(file))) throw std::runtime_error(file);
  }
  FcConfigSetCurrent(config.get());
}

InstalledFonts::~InstalledFonts() { FcConfigSetCurrent(machine()); }

std::string fontFile(const std::string& family, ui::FontWeight weight) {
  const Ptr<FcPattern> pattern(FcPatternCreate());
  FcPatternAddString(pattern.get(), FC_FAMILY, bytes(family));
  FcPatternAddInteger(pattern.get(), FC_WEIGHT,
                      weight == ui::FontWeight::Bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcDefaultSubstitute(pattern.get());
  FcResult result = FcResultNoMatch;
  const Ptr<FcPattern> match(FcFontMatch(machine(), pattern.get(), &result));
  if (!match || property(match.get(), FC_FAMILY) != family) {
    throw std::runtime_error("this machine has no font " + family);
  }
  return property(match.get(), FC_FILE);
}

std::string colourEmojiFile() {
  const Ptr<FcPattern> pattern(FcPatternCreate());
  FcPatternAddBool(pattern.get(), FC_COLOR, FcTrue);
  FcPatternAddString(pattern.get(), FC_LANG, bytes("und-zsye"));
  const Ptr<FcObjectSet> wanted(FcObjectSetBuild(FC_FILE, nullptr));
  const Ptr<FcFontSet> fonts(FcFontList(machine(), pattern.get(), wanted.get()));
  return fonts && fonts->nfont > 0 ? property(fonts->fonts[0], FC_FILE) : std::string();
}

}  // namespace test
