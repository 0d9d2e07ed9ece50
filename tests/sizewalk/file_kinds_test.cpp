#include "sizewalk/file_kinds.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace sizewalk {
namespace {

std::string_view kindOf(std::string_view name) { return kindName(classifyName(name)); }

struct ListedKind {
  std::string_view name;
  /// One space between two.
  std::string_view extensions;
};

/// Every listed kind with all its extensions, in the order of the kinds.
constexpr ListedKind kListedKinds[] = {
    {"Document", "doc docx rtf odt txt md tex epub"},
    {"PDF document", "pdf"},
    {"Spreadsheet", "xls xlsx xlsm csv tsv ods"},
    {"Presentation", "ppt pptx odp"},
    {"JPEG image", "jpg jpeg jpe"},
    {"PNG image", "png"},
    {"HEIF image", "heic heif avif"},
    {"TIFF image", "tif tiff"},
    {"GIF image", "gif"},
    {"WebP image", "webp"},
    {"Bitmap image", "bmp dib ico cur"},
    {"RAW image", "raw cr2 cr3 nef arw dng orf rw2"},
    {"SVG image", "svg"},
    {"Photoshop image", "psd psb ai"},
    {"MPEG-4 movie", "mp4 m4v"},
    {"Windows video", "wmv asf avi"},
    {"QuickTime movie", "mov qt"},
    {"Matroska video", "mkv webm"},
    {"MPEG-2 stream", "ts mpg mpeg m2ts vob"},
    {"MP3 audio", "mp3"},
    {"AAC audio", "m4a aac"},
    {"Windows audio", "wma"},
    {"Waveform audio", "wav aiff aif flac ogg opus"},
    {"Disk image", "iso vhd vhdx vmdk qcow2 img wim esd"},
    {"Zip archive", "zip zipx"},
    {"7-Zip archive", "7z rar"},
    {"GZip archive", "gz tgz"},
    {"Bzip2 archive", "bz2 tbz tbz2"},
    {"xz archive", "xz txz zst lz4 lzma"},
    {"Tar archive", "tar"},
    {"Cabinet archive", "cab msu"},
    {"Java archive", "jar war class"},
    {"Executable", "exe com scr"},
    {"Installer", "msi msix appx appxbundle msixbundle msp"},
    {"Dynamic library", "dll ocx so dylib"},
    {"Driver", "sys inf cat"},
    {"Object code", "o obj lo bc res"},
    {"Static archive", "lib a"},
    {"Debug symbols", "pdb ilk map dbg"},
    {"JavaScript", "js mjs cjs jsx"},
    {"TypeScript", "tsx mts cts"},
    {"JSON", "json jsonl ndjson"},
    {"XML text", "xml xsd xsl xaml resx csproj vcxproj sln"},
    {"YAML text", "yml yaml toml"},
    {"HTML text", "html htm xhtml"},
    {"CSS text", "css scss sass less"},
    {"C source code", "c"},
    {"C header code", "h"},
    {"C++ source code", "cpp cc cxx"},
    {"C++ header code", "hpp hh hxx"},
    {"C# source code", "cs"},
    {"Rust source", "rs"},
    {"Go source", "go"},
    {"Swift source", "swift"},
    {"Python script", "py pyi pyw"},
    {"Python bytecode", "pyc pyo"},
    {"Ruby script", "rb gemspec"},
    {"Shell script", "sh bash zsh"},
    {"Windows script", "bat cmd ps1 psm1 psd1 vbs wsf"},
    {"Java source", "java kt kts scala groovy"},
    {"PHP script", "php"},
    {"SQLite database", "sqlite sqlite3 db db3 realm mdf ldf"},
    {"Database log", "wal shm journal"},
    {"Registry hive", "hiv reg dat_"},
    {"Log file", "log etl evtx dmp trace"},
    {"Index file", "idx index cache pack"},
    {"Font", "ttf otf ttc woff woff2 fon"},
    {"Shortcut", "lnk url"},
    {"Configuration", "ini cfg conf config settings properties"},
    {"Data file", "dat bin data blob asset pak bundle"},
    {"Backup", "bak backup old orig tmp temp partial crdownload"},
};

TEST(KindNames, BeginWithTheKindsThatNeedNoExtensionAndEndWithOther) {
  EXPECT_EQ(kindCount(), 76);
  EXPECT_EQ(kindName(0), "Unknown");
  EXPECT_EQ(kindName(1), "Folder");
  EXPECT_EQ(kindName(2), "Symbolic link");
  EXPECT_EQ(kindName(3), "No extension");
  EXPECT_EQ(kindName(75), "Other");
}

TEST(KindNames, AreAllDifferent) {
  std::set<std::string_view> names;
  for (KindIndex kind = 0; kind < kindCount(); ++kind) names.insert(kindName(kind));
  EXPECT_EQ(names.size(), 76u);
  EXPECT_EQ(names.count(""), 0u);
}

TEST(KindNames, AreEmptyOutsideTheList) {
  EXPECT_EQ(kindName(kNoKind), "");
  EXPECT_EQ(kindName(76), "");
}

TEST(ClassifyName, KnowsEveryExtensionOfEveryListedKind) {
  ASSERT_EQ(std::size(kListedKinds), 71u);
  std::set<std::string> extensions;
  for (std::size_t row = 0; row < std::size(kListedKinds); ++row) {
    const auto kind = static_cast<KindIndex>(4 + row);
    EXPECT_EQ(kindName(kind), kListedKinds[row].name);
    std::istringstream words{std::string(kListedKinds[row].extensions)};
    for (std::string extension; words >> extension;) {
      EXPECT_TRUE(extensions.insert(extension).second) << extension << " occurs twice";
      // Longer ones are listed and never looked up.
      EXPECT_EQ(classifyName("file." + extension), extension.size() > 8 ? otherKind : kind)
          << extension;
    }
  }
  EXPECT_EQ(extensions.size(), 238u);
}

TEST(ClassifyName, KeepsTheSurprisingExtensions) {
  EXPECT_EQ(kindOf("main.ts"), "MPEG-2 stream");
  EXPECT_EQ(kindOf("NTUSER.DAT_"), "Registry hive");
  EXPECT_EQ(kindOf("a.dat"), "Data file");
  EXPECT_EQ(kindOf("lib.gemspec"), "Ruby script");
  EXPECT_EQ(kindOf("app.settings"), "Configuration");  // eight bytes, the longest that is looked up
}

TEST(ClassifyName, CountsTheLastDotOnly) {
  EXPECT_EQ(kindOf("archive.tar.gz"), "GZip archive");
  EXPECT_EQ(kindOf("a.b.c"), "C source code");
}

TEST(ClassifyName, FoldsAsciiCase) {
  EXPECT_EQ(kindOf("Photo.JPG"), "JPEG image");
  EXPECT_EQ(kindOf("AZ.Bz2"), "Bzip2 archive");
  EXPECT_EQ(kindOf("a.GZ"), "GZip archive");
  EXPECT_EQ(kindOf("a.z@p"), "Other");  // '@' and '[' border on the letters
  EXPECT_EQ(kindOf("a.[ip"), "Other");
}

TEST(ClassifyName, GivesNoExtensionWithoutADot) {
  EXPECT_EQ(kindOf("Makefile"), "No extension");
  EXPECT_EQ(kindOf("c"), "No extension");
  EXPECT_EQ(kindOf(""), "No extension");
}

TEST(ClassifyName, GivesNoExtensionToADotFile) {
  EXPECT_EQ(kindOf(".bashrc"), "No extension");
  EXPECT_EQ(kindOf(".pdf"), "No extension");
  EXPECT_EQ(kindOf("."), "No extension");
  EXPECT_EQ(kindOf(".config.json"), "JSON");
}

TEST(ClassifyName, GivesNoExtensionToANameThatEndsInADot) {
  EXPECT_EQ(kindOf("report."), "No extension");
  EXPECT_EQ(kindOf("report.pdf."), "No extension");
}

TEST(ClassifyName, LooksForTheDotInTheLastTwelveBytesOnly) {
  EXPECT_EQ(kindOf("notes.verylongextension"), "No extension");
  EXPECT_EQ(kindOf("file.abcdefghijk"), "Other");  // the dot is the twelfth byte from the end
  EXPECT_EQ(kindOf("file.abcdefghijkl"), "No extension");  // the thirteenth
  EXPECT_EQ(kindOf("a.pdf and no more of it"), "No extension");
}

TEST(ClassifyName, CallsExtensionsOfMoreThanEightBytesOther) {
  EXPECT_EQ(kindOf("file.abcdefghi"), "Other");
  EXPECT_EQ(kindOf("file.xsettings"), "Other");  // the last eight of its nine bytes are listed
  EXPECT_EQ(kindOf("setup.appxbundle"), "Other");
  EXPECT_EQ(kindOf("setup.msixbundle"), "Other");
  EXPECT_EQ(kindOf("log4j.properties"), "Other");
  EXPECT_EQ(kindOf("big.crdownload"), "Other");
}

TEST(ClassifyName, CallsExtensionsOutsideAsciiOther) {
  EXPECT_EQ(kindOf("R\xc3\xa9sum\xc3\xa9.PDF"), "PDF document");
  EXPECT_EQ(kindOf("file.pd\xc3\xa9"), "Other");
  EXPECT_EQ(kindOf("file.\xff"), "Other");
}

TEST(ClassifyName, CallsUnlistedExtensionsOther) {
  EXPECT_EQ(kindOf("file.xyzzy"), "Other");
  EXPECT_EQ(kindOf("a. pdf"), "Other");
  EXPECT_EQ(kindOf(std::string_view("a.\0", 3)), "Other");
  EXPECT_EQ(classifyName("file.xyzzy"), otherKind);
}

TEST(ClassifyName, ListsNoExtensionOfOneToThreeLettersByAccident) {
  // Every short string is looked up, so a table that confused two keys would show more than are
  // listed.
  constexpr std::string_view kBytes = "abcdefghijklmnopqrstuvwxyz0123456789_";
  int listed = 0;
  const auto count = [&listed](const std::string& extension) {
    listed += classifyName("x." + extension) != otherKind ? 1 : 0;
  };
  for (const char a : kBytes) {
    count({a});
    for (const char b : kBytes) {
      count({a, b});
      for (const char c : kBytes) count({a, b, c});
    }
  }
  EXPECT_EQ(listed, 162);
}

}  // namespace
}  // namespace sizewalk
