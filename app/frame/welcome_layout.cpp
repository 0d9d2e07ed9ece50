#include "app/frame/welcome_layout.h"

#include <algorithm>

#include "app/model/format.h"

namespace app {

namespace {

// Logical pixels.
constexpr double kWelcomePadding = 16;
constexpr double kIcon = 44;
constexpr double kIconGap = 12;
constexpr double kMostCardWidth = 330;
constexpr double kCardPadding = 12;
constexpr double kLineGap = 2;
constexpr double kTrackGap = 8;
constexpr double kHintGap = 8;

// Device pixels at every scale.
constexpr int kTrackHeight = 6;
constexpr int kLeastFill = 3;
constexpr int kButtonExtraWidth = 20;
constexpr int kWelcomeButtonExtraHeight = 6;

/// Whether used / total is above 0.9, without rounding: sizes may be beyond what a double holds.
bool isNearlyFull(const VolumeFigures& figures) {
  if (figures.used <= 0) return false;
  return figures.used >= figures.total || figures.total - figures.used <= (figures.total - 1) / 10;
}

class WelcomeBuilder {
 public:
  explicit WelcomeBuilder(const WelcomeRequest& request)
      : request_(request), view_(request.view), padding_(scaled(kWelcomePadding)) {}

  WelcomeLayout build() {
    setColumns();
    const int below = placeHeading();
    placeButton(placeCards(below));
    placeHint();
    // In a view too low for both, the button stays.
    if (below > layout_.button.y) layout_.icon = layout_.heading = layout_.note = {};
    return layout_;
  }

 private:
  int scaled(double logical) const { return ui::scaled(logical, request_.scale); }
  int bottom() const { return view_.y + view_.h; }
  int buttonHeight() const { return request_.lineHeight + kWelcomeButtonExtraHeight; }

  void setColumns() {
    layout_.cardWidth = std::min((view_.w - 5 * padding_) / 2, scaled(kMostCardWidth));
    if (layout_.cardWidth >= 1) {
      layout_.columns = std::max(1, (view_.w - 2 * padding_) / (layout_.cardWidth + padding_));
    } else {
      layout_.cardWidth = std::max(view_.w - 2 * padding_, 0);  // no room for two of any width
    }
    const int grid = layout_.columns * (layout_.cardWidth + padding_) - padding_;
    left_ = view_.x + (view_.w - grid) / 2;
  }

  /// Returns where the cards begin.
  int placeHeading() {
    const int icon = scaled(kIcon);
    const int top = view_.y + padding_;
    const int texts = request_.headingHeight + scaled(kLineGap) + request_.lineHeight;
    const int height = std::max(icon, texts);
    layout_.icon = {left_, top + (height - icon) / 2, icon, icon};
    const int x = left_ + icon + scaled(kIconGap);
    const int width = std::max(view_.x + view_.w - padding_ - x, 0);
    const int y = top + (height - texts) / 2;
    layout_.heading = {x, y, width, request_.headingHeight};
    layout_.note = {x, y + texts - request_.lineHeight, width, request_.lineHeight};
    return top + height + padding_;
  }

  /// Returns where the last row ends.
  int placeCards(int top) {
    const int height = 2 * (scaled(kCardPadding) + request_.lineHeight) + scaled(kLineGap) +
                       scaled(kTrackGap) + kTrackHeight;
    const int limit = bottom() - 2 * padding_ - buttonHeight();
    int below = top - padding_;
    layout_.rowStep = height + padding_;
    if (layout_.cardWidth < 1) return below;
    for (int y = top; layout_.cards.size() < request_.cards; y += layout_.rowStep) {
      placeRow({left_, y, layout_.cardWidth, height});
      if (y + height <= limit) below = y + height;
      layout_.cardsHeight = y + height - top;
    }
    if (below < top) layout_.cards.clear();  // no room for a row
    layout_.cardsView = {view_.x, top, view_.w, std::max(below - top, 0)};
    return below;
  }

  void placeRow(ui::Rect card) {
    for (int column = 0; column < layout_.columns; ++column) {
      if (layout_.cards.size() == request_.cards) return;
      layout_.cards.push_back(partsOf(card));
      card.x += card.w + padding_;
    }
  }

  CardPlaces partsOf(const ui::Rect& card) const {
    const int inner = scaled(kCardPadding);
    const int x = card.x + inner;
    const int width = std::max(card.w - 2 * inner, 0);
    const int nameY = card.y + inner;
    const int figuresY = nameY + request_.lineHeight + scaled(kLineGap);
    return {card,
            {x, nameY, width, request_.lineHeight},
            {x, figuresY, width, request_.lineHeight},
            {x, card.y + card.h - inner - kTrackHeight, width, kTrackHeight}};
  }

  void placeButton(int below) {
    const int lowest = std::max(bottom() - padding_ - buttonHeight(), view_.y);
    const int width = std::min(request_.buttonTextWidth + kButtonExtraWidth, std::max(view_.w, 0));
    const int x = std::clamp(left_, view_.x, view_.x + std::max(view_.w - width, 0));
    layout_.button = {x, std::min(below + padding_, lowest), width, buttonHeight()};
  }

  void placeHint() {
    const int y = layout_.button.y + layout_.button.h + scaled(kHintGap);
    if (y + request_.lineHeight > bottom() - padding_) return;
    const int width = std::max(view_.x + view_.w - padding_ - layout_.button.x, 0);
    layout_.hint = {layout_.button.x, y, width, request_.lineHeight};
  }

  const WelcomeRequest& request_;
  const ui::Rect view_;
  const int padding_;
  /// Of the grid.
  int left_ = 0;
  WelcomeLayout layout_;
};

}  // namespace

std::string figuresText(const VolumeCard& card) {
  if (!card.figures) return std::string(kFiguresPendingText);
  return formatSize(card.figures->used) + " used of " + formatSize(card.figures->total);
}

std::optional<UsageBar> usageBar(const VolumeCard& card, int trackWidth) {
  if (!card.figures || card.figures->total < 1) return std::nullopt;
  const double filled = trackWidth * static_cast<double>(card.figures->used) /
                        static_cast<double>(card.figures->total);
  const double wanted = std::max(double{kLeastFill}, filled);
  return UsageBar{static_cast<int>(std::min(wanted, static_cast<double>(trackWidth))),
                  isNearlyFull(*card.figures)};
}

WelcomeLayout layOutWelcome(const WelcomeRequest& request) {
  return WelcomeBuilder(request).build();
}

}  // namespace app
