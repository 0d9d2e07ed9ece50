#include "app/frame/volume_cards.h"

#include <algorithm>
#include <utility>

#include "app/model/format.h"

namespace app {

namespace {

VolumeFigures figuresOf(const sizewalk::VolumeUsage& usage) {
  return {signedSize(usage.usedBytes), signedSize(usage.totalBytes)};
}

}  // namespace

void VolumeCards::refresh(std::vector<sizewalk::Volume> volumes) {
  volumes_ = std::move(volumes);
  std::vector<std::string> mountPoints;
  for (const sizewalk::Volume& volume : volumes_) mountPoints.push_back(volume.mountPoint);
  std::erase_if(usage_, [&](const auto& known) {
    return std::ranges::find(mountPoints, known.first) == mountPoints.end();
  });
  measure_(mountPoints);
}

void VolumeCards::measured(const std::string& mountPoint, const sizewalk::VolumeUsage& usage) {
  usage_[mountPoint] = usage;
}

std::vector<VolumeCard> VolumeCards::cards() const {
  std::vector<VolumeCard> cards;
  for (const sizewalk::Volume& volume : volumes_) {
    VolumeCard card{volume.displayName, volume.mountPoint, {}};
    if (const auto known = usage_.find(volume.mountPoint); known != usage_.end()) {
      const sizewalk::VolumeUsage& usage = known->second;
      if (usage.totalBytes == 0) continue;
      card.figures = figuresOf(usage);
    }
    cards.push_back(std::move(card));
  }
  return cards;
}

}  // namespace app
