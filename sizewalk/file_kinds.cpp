#include "sizewalk/file_kinds.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace sizewalk {

// One list of kinds with their extensions is turned, at compile time, into the list of names and a
// hash table from extension to kind. Nothing is left to build at run time, so the reader threads
// share both without ordering or locks, and a look-up, made once for every file of a scan, is a
// multiplication and mostly one probe: no allocation, no string comparison. A std::unordered_map
// costs a pointer chase and a division more for each of a million files.

namespace {

struct KindRow {
  std::string_view name;
  /// Lower case, separated by single spaces.
  std::string_view extensions;
};

/// Kinds of regular files by extension; row n is kind kFirstListedKind + n. "ts" is a video stream,
/// not TypeScript. Extensions longer than kLongestExtension stand here for completeness: the
/// classifier calls their files "Other".
constexpr KindRow kKindRows[] = {
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

constexpr std::size_t kFirstListedKind = 4;
static_assert(kFirstListedKind + std::size(kKindRows) + 1 == kKindCount);

/// Bytes of an extension that fit into a key.
constexpr std::size_t kLongestExtension = 8;
/// A dot further than this many bytes before the end of a name starts no extension.
constexpr std::size_t kDotReach = 12;

constexpr std::array<std::string_view, kKindCount> makeKindNames() {
  std::array<std::string_view, kKindCount> names;
  names[kKindUnknown] = "Unknown";
  names[kKindFolder] = "Folder";
  names[kKindSymbolicLink] = "Symbolic link";
  names[kKindNoExtension] = "No extension";
  for (std::size_t row = 0; row < std::size(kKindRows); ++row) {
    names[kFirstListedKind + row] = kKindRows[row].name;
  }
  names[otherKind] = "Other";
  return names;
}

constexpr std::array<std::string_view, kKindCount> kindNames = makeKindNames();

/// Open-addressing hash table from an extension's key to its kind. A key is the extension's bytes,
/// the first one highest, without padding: "a" is 0x61, "ab" 0x6162. Key 0 marks a free slot.
class ExtensionTable {
 public:
  constexpr ExtensionTable() {
    for (std::size_t row = 0; row < std::size(kKindRows); ++row) {
      addAll(kKindRows[row].extensions, static_cast<std::uint8_t>(kFirstListedKind + row));
    }
  }

  constexpr std::uint16_t find(std::uint64_t key) const {
    const std::size_t slot = slotOf(key);
    return keys_[slot] == 0 ? otherKind : kinds_[slot];
  }

 private:
  // Four slots to an extension: hardly a look-up needs a second probe, and the keys still fit in 8
  // KiB.
  static constexpr unsigned kSlotBits = 10;
  static constexpr std::size_t kSlots = std::size_t{1} << kSlotBits;

  /// The slot that holds `key`, or the free one where it belongs.
  constexpr std::size_t slotOf(std::uint64_t key) const {
    // Fibonacci hashing (Knuth, TAOCP 6.4): 2^64 over the golden ratio.
    std::size_t slot = (key * 0x9E3779B97F4A7C15u) >> (64 - kSlotBits);
    while (keys_[slot] != 0 && keys_[slot] != key) slot = (slot + 1) % kSlots;
    return slot;
  }

  constexpr void addAll(std::string_view extensions, std::uint8_t kind) {
    while (!extensions.empty()) {
      const std::string_view extension = extensions.substr(0, extensions.find(' '));
      if (extension.size() <= kLongestExtension) add(extension, kind);
      extensions.remove_prefix(std::min(extension.size() + 1, extensions.size()));
    }
  }

  constexpr void add(std::string_view extension, std::uint8_t kind) {
    std::uint64_t key = 0;
    for (const char c : extension) key = key << 8 | static_cast<unsigned char>(c);
    const std::size_t slot = slotOf(key);
    if (keys_[slot] == key) throw "an extension is listed twice";  // fails the compilation
    keys_[slot] = key;
    kinds_[slot] = kind;
  }

  std::array<std::uint64_t, kSlots> keys_{};
  std::array<std::uint8_t, kSlots> kinds_{};
};

constexpr ExtensionTable extensionKinds;

}  // namespace

std::uint16_t classifyName(std::string_view name) {
  const std::size_t reach = name.size() < kDotReach ? name.size() : kDotReach;
  const std::size_t dot = name.substr(name.size() - reach).rfind('.');
  if (dot == std::string_view::npos) return kKindNoExtension;
  const std::size_t start = name.size() - reach + dot + 1;
  if (start == 1 || start == name.size()) return kKindNoExtension;
  const std::string_view extension = name.substr(start);
  if (extension.size() > kLongestExtension) return otherKind;

  // Bytes past ASCII need no test of their own: no listed extension holds one.
  std::uint64_t key = 0;
  for (const char c : extension) {
    const auto byte = static_cast<unsigned char>(c);
    const bool upper = byte >= 'A' && byte <= 'Z';
    key = key << 8 | static_cast<unsigned char>(upper ? byte + ('a' - 'A') : byte);
  }
  return extensionKinds.find(key);
}

std::string_view kindName(KindIndex kind) {
  if (kind >= kKindCount) return {};
  return kindNames[kind];
}

KindIndex kindCount() { return kKindCount; }

}  // namespace sizewalk
