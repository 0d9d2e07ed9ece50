#include "app/model/format.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include "tests/support/environment.h"
#include "tests/support/temp_directory.h"

namespace app {
namespace {

TEST(SignedSize, EndsWithTheSignedRange) {
  EXPECT_EQ(signedSize(0), 0);
  EXPECT_EQ(signedSize(INT64_MAX), INT64_MAX);
  EXPECT_EQ(signedSize(UINT64_MAX), INT64_MAX);
}

TEST(SumOfSizes, StaysWithinTheSignedRange) {
  EXPECT_EQ(sumOfSizes(2, 3), 5);
  EXPECT_EQ(sumOfSizes(INT64_MAX, 1), INT64_MAX);
  EXPECT_EQ(sumOfSizes(INT64_MIN, -1), INT64_MIN);
}

TEST(FormatSize, GivesBytesBelowOneThousand) {
  EXPECT_EQ(formatSize(0), "0 B");
  EXPECT_EQ(formatSize(512), "512 B");
  EXPECT_EQ(formatSize(999), "999 B");
}

TEST(FormatSize, GivesBytesForNegativeSizes) {
  EXPECT_EQ(formatSize(-1), "-1 B");
  EXPECT_EQ(formatSize(-5000000), "-5000000 B");
  EXPECT_EQ(formatSize(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808 B");
}

TEST(FormatSize, ShowsThreeDigits) {
  EXPECT_EQ(formatSize(1000), "1.00 kB");
  EXPECT_EQ(formatSize(1500), "1.50 kB");
  EXPECT_EQ(formatSize(10000), "10.0 kB");
  EXPECT_EQ(formatSize(23400000), "23.4 MB");
  EXPECT_EQ(formatSize(100000), "100 kB");
  EXPECT_EQ(formatSize(512000000000), "512 GB");
}

TEST(FormatSize, StepsThroughTheDecimalUnits) {
  EXPECT_EQ(formatSize(1500000), "1.50 MB");
  EXPECT_EQ(formatSize(1000000000), "1.00 GB");
  EXPECT_EQ(formatSize(1000000000000), "1.00 TB");
  EXPECT_EQ(formatSize(1000000000000000), "1.00 PB");
}

TEST(FormatSize, StaysAtPetabytes) {
  EXPECT_EQ(formatSize(2000000000000000000), "2000 PB");
  EXPECT_EQ(formatSize(std::numeric_limits<std::int64_t>::max()), "9223 PB");
}

TEST(FormatSize, RoundsAfterChoosingTheDecimals) {
  EXPECT_EQ(formatSize(999999), "1000 kB");
  EXPECT_EQ(formatSize(9999), "10.00 kB");
  EXPECT_EQ(formatSize(99999), "100.0 kB");
}

TEST(FormatSize, RoundsHalvesLikePrintf) {
  EXPECT_EQ(formatSize(100500), "100 kB");  // exact halves go to the even digit
  EXPECT_EQ(formatSize(101500), "102 kB");
  EXPECT_EQ(formatSize(1125), "1.12 kB");
}

/// Builds a locale with a decimal comma and sets it. Its sources are the test's own: not every
/// system has those of the C library.
bool useCommaLocale(const test::TempDirectory& locales) {
  test::writeFile(locales / "source",
                  "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\n"
                  "END LC_NUMERIC\n");
  std::string characters =
      "<code_set_name> ANSI_X3.4-1968\n<escape_char> /\n<mb_cur_min> 1\n<mb_cur_max> 1\nCHARMAP\n";
  for (int code = 0; code < 128; ++code) {
    char line[32];
    std::snprintf(line, sizeof line, "<U%04X> /x%02x X\n", code, code);
    characters += line;
  }
  test::writeFile(locales / "characters", characters + "END CHARMAP\n");
  // It reports the categories that the source leaves out.
  const std::string build = "cd '" + locales.path() +
                            "' && localedef -c --no-archive -i ./source -f ./characters ./xx_XX "
                            ">/dev/null 2>&1";
  [[maybe_unused]] const int status = std::system(build.c_str());
  test::ScopedEnvironment environment;
  environment.set("LOCPATH", locales.path());
  return std::setlocale(LC_NUMERIC, "xx_XX") != nullptr;
}

TEST(FormatSize, DisregardsTheLocale) {
  const test::TempDirectory locales;
  ASSERT_TRUE(useCommaLocale(locales));
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  EXPECT_EQ(formatSize(1500), "1.50 kB");
  EXPECT_EQ(formatCount(1234567), "1,234,567");
  std::setlocale(LC_NUMERIC, "C");
}

TEST(FormatCount, PutsACommaBetweenThreeDigits) {
  EXPECT_EQ(formatCount(0), "0");
  EXPECT_EQ(formatCount(100), "100");
  EXPECT_EQ(formatCount(999), "999");
  EXPECT_EQ(formatCount(1000), "1,000");
  EXPECT_EQ(formatCount(12345), "12,345");
  EXPECT_EQ(formatCount(123456), "123,456");
  EXPECT_EQ(formatCount(1234567), "1,234,567");
}

TEST(FormatCount, KeepsTheSign) {
  EXPECT_EQ(formatCount(-999), "-999");
  EXPECT_EQ(formatCount(-1000), "-1,000");
}

TEST(FormatCount, CoversTheWholeRange) {
  EXPECT_EQ(formatCount(std::numeric_limits<std::int64_t>::max()), "9,223,372,036,854,775,807");
  EXPECT_EQ(formatCount(std::numeric_limits<std::int64_t>::min()), "-9,223,372,036,854,775,808");
}

TEST(DisplayName, LeavesValidNamesAlone) {
  EXPECT_EQ(displayName(""), "");
  EXPECT_EQ(displayName("report.pdf"), "report.pdf");
  EXPECT_EQ(displayName("caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\x81"),
            "caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\x81");
  EXPECT_EQ(displayName("a\\b\n"), "a\\b\n");
  EXPECT_EQ(displayName(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(DisplayName, AcceptsTheBordersOfEveryLength) {
  for (const char* name :
       {"\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
        "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"}) {
    EXPECT_EQ(displayName(name), name);
  }
}

TEST(DisplayName, EscapesBytesThatAreNotUtf8) {
  EXPECT_EQ(displayName("caf\xe9s"), "caf\\351s");
  EXPECT_EQ(displayName("\xff"), "\\377");
  EXPECT_EQ(displayName("\x80"), "\\200");
  EXPECT_EQ(displayName("\xf8\x88\x80\x80\x80"), "\\370\\210\\200\\200\\200");
}

TEST(DisplayName, EscapesOverlongForms) {
  EXPECT_EQ(displayName("\xc0\xaf"), "\\300\\257");
  EXPECT_EQ(displayName("\xc1\xbf"), "\\301\\277");
  EXPECT_EQ(displayName("\xe0\x9f\xbf"), "\\340\\237\\277");
  EXPECT_EQ(displayName("\xf0\x8f\xbf\xbf"), "\\360\\217\\277\\277");
}

TEST(DisplayName, EscapesSurrogatesAndValuesPastUnicode) {
  EXPECT_EQ(displayName("\xed\xa0\x80"), "\\355\\240\\200");
  EXPECT_EQ(displayName("\xed\xbf\xbf"), "\\355\\277\\277");
  EXPECT_EQ(displayName("\xf4\x90\x80\x80"), "\\364\\220\\200\\200");
}

TEST(DisplayName, EscapesEveryByteOfATruncatedSequence) {
  EXPECT_EQ(displayName("a\xe2\x82"), "a\\342\\202");
  EXPECT_EQ(displayName("\xf0\x9f\x93"), "\\360\\237\\223");
  EXPECT_EQ(displayName("\xc3"), "\\303");
}

TEST(DisplayName, GoesOnAfterABadByte) {
  EXPECT_EQ(displayName("\xc3\xa9\xe9\xc3\xa9z"), "\xc3\xa9\\351\xc3\xa9z");
  EXPECT_EQ(displayName("\xe2\x82z\xe2\x82\xac"), "\\342\\202z\xe2\x82\xac");
}

}  // namespace
}  // namespace app
