#include "ui/paragraph.h"

#include <cstddef>
#include <utility>

#include "base/utf8.h"

namespace ui {

namespace {

/// Takes words one by one and breaks the line before the one that does not fit.
class LineBreaker {
 public:
  LineBreaker(int width, const MeasureText& measure) : width_(width), measure_(measure) {}

  void add(std::string_view word) {
    std::string candidate = begun_ ? line_ + ' ' + std::string(word) : std::string(word);
    if (begun_ && measure_(candidate) > width_) {
      if (word.empty()) return;  // one of several spaces at the end of the line
      endLine();
      candidate = word;
    }
    line_ = std::move(candidate);
    begun_ = true;
    if (measure_(line_) > width_) breakInside();
  }

  void endLine() {
    lines_.push_back(std::move(line_));
    line_.clear();
    begun_ = false;
  }

  std::vector<std::string> take() { return std::move(lines_); }

 private:
  /// Breaks the one word of the line between characters; what is left of it begins the next line.
  void breakInside() {
    const std::string word = std::exchange(line_, {});
    std::string_view rest = word;
    while (const auto character = base::firstCharacter(rest)) {
      std::string longer = line_ + std::string(rest.substr(0, character->length));
      if (!line_.empty() && measure_(longer) > width_) {
        lines_.push_back(std::move(line_));
        line_.clear();
        continue;
      }
      line_ = std::move(longer);
      rest.remove_prefix(character->length);
    }
  }

  int width_;
  const MeasureText& measure_;
  std::vector<std::string> lines_;
  std::string line_;
  bool begun_ = false;  // the line holds a word, which may be empty
};

/// Calls `use` with each part of `text` between two `separator`s.
template <typename Use>
void forEachPart(std::string_view text, char separator, Use use) {
  for (;;) {
    const std::size_t end = text.find(separator);
    use(text.substr(0, end));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

}  // namespace

std::vector<std::string> wrappedLines(std::string_view text, int width,
                                      const MeasureText& measure) {
  if (text.empty()) return {};
  const std::string valid = base::withReplacements(text);
  LineBreaker breaker(width, measure);
  forEachPart(valid, '\n', [&](std::string_view line) {
    forEachPart(line, ' ', [&](std::string_view word) { breaker.add(word); });
    breaker.endLine();
  });
  return breaker.take();
}

Paragraph::Paragraph(Connection& connection, std::string_view text, const Font& font, int width)
    : font_(font), width_(width) {
  const auto measure = [&](std::string_view part) { return textWidth(connection, font, part); };
  lines_ = wrappedLines(text, width, measure);
}

void Paragraph::draw(Canvas& canvas, int x, int y, Colour colour, Align align) const {
  for (const std::string& line : lines_) {
    drawText(canvas, {x, y, width_, font_.height}, line, font_, colour, align);
    y += font_.height;
  }
}

}  // namespace ui
