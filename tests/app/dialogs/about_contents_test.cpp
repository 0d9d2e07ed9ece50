#include "app/dialogs/about_contents.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace app {
namespace {

TEST(AboutContents, SayWhatTheProgramIs) {
  const AboutContents contents = aboutContents(std::nullopt);
  EXPECT_EQ(contents.heading, "Heap Gauge");
  EXPECT_EQ(contents.description,
            "Find out where your disk space went. Scans a folder or a whole volume in parallel and "
            "shows the results as they arrive, with a treemap of every file and four measures of "
            "size \xE2\x80\x94 including what has only appeared recently.");
  EXPECT_EQ(contents.version, "Version 1.1.1");
  EXPECT_EQ(contents.closeLabel, "Close");
}

TEST(AboutContents, SayWhoBuiltIt) {
  std::string line;
  std::string addresses;
  for (const LinkedText& part : aboutContents(std::nullopt).maker) {
    line += part.text;
    addresses += "|" + part.address;
  }
  EXPECT_EQ(line, "Built by Varnick Apps  \xC2\xB7  Web page");
  EXPECT_EQ(addresses, "||https://varnick-apps.example/||https://heapgauge.example/");
}

TEST(AboutContents, HaveADownloadOnlyWhenThereIsOne) {
  EXPECT_FALSE(aboutContents(std::nullopt).update);
  const AboutContents contents =
      aboutContents(UpdateNotice{"Version 2 is available.", "https://a.example/"});
  ASSERT_TRUE(contents.update);
  EXPECT_EQ(contents.update->message, "Version 2 is available.");
  EXPECT_EQ(contents.update->downloadAddress, "https://a.example/");
  EXPECT_STREQ(kDownloadLabel, "Download it");
}

}  // namespace
}  // namespace app
