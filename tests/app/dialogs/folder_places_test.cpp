#include "app/dialogs/folder_places.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"

namespace app {
namespace {

using Places = std::vector<FolderPlace>;
using sizewalk::VolumeKind;

TEST(FolderPlaces, BeginWithTheHomeFolderAndTheRoot) {
  EXPECT_EQ(folderPlaces("/home/u", {}), (Places{{"Home", "/home/u"}, {"Filesystem", "/"}}));
}

TEST(FolderPlaces, HaveNoHomeFolderWithoutOne) {
  EXPECT_EQ(folderPlaces("", {}), (Places{{"Filesystem", "/"}}));
}

TEST(FolderPlaces, EndWithTheVolumesInTheirOrder) {
  EXPECT_EQ(folderPlaces("/root", {{"Stick", "/media/u/stick", VolumeKind::Removable},
                                   {"A\xff", "/mnt/a", VolumeKind::Other}}),
            (Places{{"Home", "/root"},
                    {"Filesystem", "/"},
                    {"Stick", "/media/u/stick"},
                    {"A\xff", "/mnt/a"}}));
}

TEST(FolderPlaces, LeaveOutVolumesWithoutAPlaceInTheTree) {
  EXPECT_EQ(folderPlaces("", {{"Pipe", "pipe:[1]"}, {"None", ""}}), (Places{{"Filesystem", "/"}}));
}

TEST(FolderPlaces, NameNoFolderTwice) {
  EXPECT_EQ(folderPlaces("/home/u/", {{"Filesystem", "/", VolumeKind::Root}, {"Data", "/home/u"}}),
            (Places{{"Home", "/home/u"}, {"Filesystem", "/"}}));
}

TEST(FolderPlaces, TellVolumesOfOneNameApart) {
  EXPECT_EQ(folderPlaces("/home/u", {{"Home", "/home", VolumeKind::Home}}).at(2),
            (FolderPlace{"/home", "/home"}));
}

TEST(FolderPlaces, TakeTheHomeFolderFromTheEnvironment) {
  test::ScopedEnvironment environment;
  environment.set("HOME", "/home/somebody");
  EXPECT_EQ(folderPlaces().at(0), (FolderPlace{"Home", "/home/somebody"}));
  environment.unset("HOME");
  EXPECT_EQ(folderPlaces().at(0), (FolderPlace{"Filesystem", "/"}));
}

}  // namespace
}  // namespace app
