#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/model/update_notice.h"

namespace app {

/// A part of a line that leads to an address of the web, or with an empty one just text.
struct LinkedText {
  std::string text;
  std::string address;
};

/// What the About box says, from top to bottom.
struct AboutContents {
  std::string heading;
  std::string description;  // to be wrapped
  std::string version;
  /// With a link `kDownloadLabel`; nothing while no newer version is known.
  std::optional<UpdateNotice> update;
  /// One line, the parts side by side.
  std::vector<LinkedText> maker;
  std::string closeLabel;
};

AboutContents aboutContents(std::optional<UpdateNotice> update);

}  // namespace app
