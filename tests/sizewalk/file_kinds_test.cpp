#include "sizewalk/file_kinds.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

namespace sizewalk {
namespace {

std::string_view kindOf(std::string_view name) { return kindName(classifyName(name)); }

struct Sample {
  std::string_view extension;
  std::string_view kind;
};

/// The last usable extension of every listed kind, in the order of the kinds.
constexpr Sample kSamples[] = {
    {"epub", "Document"},
    {"pdf", "PDF document"},
    {"ods", "Spreadsheet"},
    {"odp", "Presentation"},
    {"jpe", "JPEG image"},
    {"png", "PNG image"},
    {"avif", "HEIF image"},
    {"tiff", "TIFF image"},
    {"gif", "GIF image"},
    {"webp", "WebP image"},
    {"cur", "Bitmap image"},
    {"rw2", "RAW image"},
    {"svg", "SVG image"},
    {"ai", "Photoshop image"},
    {"m4v", "MPEG-4 movie"},
    {"avi", "Windows video"},
    {"qt", "QuickTime movie"},
    {"webm", "Matroska video"},
    {"vob", "MPEG-2 stream"},
    {"mp3", "MP3 audio"},
    {"aac", "AAC audio"},
    {"wma", "Windows audio"},
    {"opus", "Waveform audio"},
    {"esd", "Disk image"},
    {"zipx", "Zip archive"},
    {"rar", "7-Zip archive"},
    {"tgz", "GZip archive"},
    {"tbz2", "Bzip2 archive"},
    {"lzma", "xz archive"},
    {"tar", "Tar archive"},
    {"msu", "Cabinet archive"},
    {"class", "Java archive"},
    {"scr", "Executable"},
    {"msp", "Installer"},
    {"dylib", "Dynamic library"},
    {"cat", "Driver"},
    {"res", "Object code"},
    {"a", "Static archive"},
    {"dbg", "Debug symbols"},
    {"jsx", "JavaScript"},
    {"cts", "TypeScript"},
    {"ndjson", "JSON"},
    {"sln", "XML text"},
    {"toml", "YAML text"},
    {"xhtml", "HTML text"},
    {"less", "CSS text"},
    {"c", "C source code"},
    {"h", "C header code"},
    {"cxx", "C++ source code"},
    {"hxx", "C++ header code"},
    {"cs", "C# source code"},
    {"rs", "Rust source"},
    {"go", "Go source"},
    {"swift", "Swift source"},
    {"pyw", "Python script"},
    {"pyo", "Python bytecode"},
    {"gemspec", "Ruby script"},
    {"zsh", "Shell script"},
    {"wsf", "Windows script"},
    {"groovy", "Java source"},
    {"php", "PHP script"},
    {"ldf", "SQLite database"},
    {"journal", "Database log"},
    {"dat_", "Registry hive"},
    {"trace", "Log file"},
    {"pack", "Index file"},
    {"fon", "Font"},
    {"url", "Shortcut"},
    {"settings", "Configuration"},
    {"bundle", "Data file"},
    {"partial", "Backup"},
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
  for (int kind = 0; kind < kindCount(); ++kind) names.insert(kindName(kind));
  EXPECT_EQ(names.size(), 76u);
  EXPECT_EQ(names.count(""), 0u);
}

TEST(KindNames, AreEmptyOutsideTheList) {
  EXPECT_EQ(kindName(-1), "");
  EXPECT_EQ(kindName(76), "");
}

TEST(ClassifyName, GivesEveryListedKindInItsPlace) {
  ASSERT_EQ(std::size(kSamples), 71u);
  for (std::size_t row = 0; row < std::size(kSamples); ++row) {
    const std::string name = "file." + std::string(kSamples[row].extension);
    EXPECT_EQ(classifyName(name), 4 + row) << name;
    EXPECT_EQ(kindOf(name), kSamples[row].kind) << name;
  }
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
