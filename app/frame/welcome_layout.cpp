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

constexpr int kShareOfRoomAbove = 3;

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
    const bool allSeen = layout_.cardsHeight == layout_.cardsView.h;
    if (allSeen && !layout_.hint.empty())
      moveDown((limit() - end(layout_.hint)) / kShareOfRoomAbove);
    return layout_;
  }

 private:
  int scaled(double logical) const { return ui::scaled(logical, request_.scale); }
  int limit() const { return view_.y + view_.h - padding_; }
  static int end(const ui::Rect& part) { return part.y + part.h; }
  /// A width in the middle of the view, where there is so much room.
  ui::Rect centred(int width, int y, int height) const {
    const int fits = std::clamp(width, 0, std::max(view_.w, 0));
    return {view_.x + (view_.w - fits) / 2, y, fits, height};
  }
  int buttonHeight() const { return request_.lineHeight + kWelcomeButtonExtraHeight; }

  void setColumns() {
    layout_.cardWidth = std::min((view_.w - 5 * padding_) / 2, scaled(kMostCardWidth));
    if (layout_.cardWidth >= 1) {
      layout_.columns = std::max(1, (view_.w - 2 * padding_) / (layout_.cardWidth + padding_));
    } else {
      layout_.cardWidth = std::max(view_.w - 2 * padding_, 0);  // no room for two of any width
    }
    const auto columns = static_cast<std::size_t>(layout_.columns);
    const auto used = static_cast<int>(std::clamp(request_.cards, std::size_t{1}, columns));
    const int grid = used * (layout_.cardWidth + padding_) - padding_;
    left_ = view_.x + (view_.w - grid) / 2;
  }

  /// Returns where the cards begin.
  int placeHeading() {
    const int icon = scaled(kIcon);
    const int top = view_.y + padding_;
    const int texts = request_.headingHeight + scaled(kLineGap) + request_.lineHeight;
    const int height = std::max(icon, texts);
    const int gap = icon + scaled(kIconGap);
    const int wanted = gap + std::max(request_.headingTextWidth, request_.noteTextWidth);
    const ui::Rect block = centred(std::min(wanted, view_.w - 2 * padding_), top, height);
    layout_.icon = {block.x, top + (height - icon) / 2, icon, icon};
    const int x = block.x + gap;
    const int width = std::max(block.w - gap, 0);
    const int y = top + (height - texts) / 2;
    layout_.heading = {x, y, width, request_.headingHeight};
    layout_.note = {x, y + texts - request_.lineHeight, width, request_.lineHeight};
    return top + height + padding_;
  }

  /// Returns where the last row ends.
  int placeCards(int top) {
    const int height = 2 * (scaled(kCardPadding) + request_.lineHeight) + scaled(kLineGap) +
                       scaled(kTrackGap) + kTrackHeight;
    const int lowest = limit() - padding_ - buttonHeight();
    int below = top - padding_;
    layout_.rowStep = height + padding_;
    if (layout_.cardWidth < 1) return below;
    for (int y = top; layout_.cards.size() < request_.cards; y += layout_.rowStep) {
      placeRow({left_, y, layout_.cardWidth, height});
      if (y + height <= lowest) below = y + height;
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
    const int lowest = std::max(limit() - buttonHeight(), view_.y);
    layout_.button = centred(request_.buttonTextWidth + kButtonExtraWidth,
                             std::min(below + padding_, lowest), buttonHeight());
  }

  void placeHint() {
    const int y = end(layout_.button) + scaled(kHintGap);
    if (y + request_.lineHeight > limit()) return;
    const int width = std::min(request_.hintTextWidth, view_.w - 2 * padding_);
    layout_.hint = centred(width, y, request_.lineHeight);
  }

  void moveDown(int distance) {
    for (ui::Rect* part : {&layout_.icon, &layout_.heading, &layout_.note, &layout_.cardsView,
                           &layout_.button, &layout_.hint}) {
      part->y += distance;
    }
    for (CardPlaces& card : layout_.cards) {
      for (ui::Rect* part : {&card.card, &card.name, &card.figures, &card.track}) {
        part->y += distance;
      }
    }
  }

  const WelcomeRequest& request_;
  const ui::Rect view_;
  const int padding_;
  /// Of the cards.
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
