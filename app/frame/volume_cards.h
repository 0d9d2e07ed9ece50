#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/frame/welcome_layout.h"
#include "sizewalk/volume_meter.h"
#include "sizewalk/volumes.h"

namespace app {

/// The volumes of this machine as the welcome view shows them: listed at once, with figures as they
/// come, since a volume on a network that is down may never answer. Window thread only.
class VolumeCards {
 public:
  /// `measure` asks for the usage of mount points; the answers come back through `measured`.
  explicit VolumeCards(std::function<void(const std::vector<std::string>&)> measure)
      : measure_(std::move(measure)) {}

  /// Lists the volumes anew and asks how full they are. Until they answer, those that were listed
  /// before keep their figures.
  void refresh() { refresh(sizewalk::listVolumes()); }
  void refresh(std::vector<sizewalk::Volume> volumes);
  /// The answer for one mount point. One without room is no volume.
  void measured(const std::string& mountPoint, const sizewalk::VolumeUsage& usage);

  /// Those with figures and those that have not answered yet.
  std::vector<VolumeCard> cards() const;

 private:
  std::function<void(const std::vector<std::string>&)> measure_;
  std::vector<sizewalk::Volume> volumes_;
  std::map<std::string, sizewalk::VolumeUsage> usage_;
};

}  // namespace app
