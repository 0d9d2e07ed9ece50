#include "app/dialogs/about_contents.h"

#include <utility>

#include "app/model/product.h"

namespace app {

AboutContents aboutContents(std::optional<UpdateNotice> update) {
  return {.heading = kProductName,
          .description = kProductDescription,
          .version = std::string("Version ") + kProductVersion,
          .update = std::move(update),
          .maker = {{.text = "Built by ", .address = {}},
                    {.text = kMakerName, .address = kMakerPage},
                    {.text = "  ·  ", .address = {}},
                    {.text = "Web page", .address = kProductPage}},
          .closeLabel = "Close"};
}

}  // namespace app
