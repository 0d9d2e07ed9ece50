#include "app/frame/status_text.h"

#include <cstdio>

#include "app/model/format.h"

namespace app {

namespace {

constexpr char kSeparator[] = "  ·  ";

std::string seconds(double elapsed) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2fs", elapsed);
  return text;
}

std::string endOfScan(const ScanStatus& status) {
  std::string text = kSeparator + seconds(status.elapsedSeconds);
  if (status.hardLinks > 0) {
    text += kSeparator + formatCount(status.hardLinks) + " hard links counted once (" +
            formatSize(status.hardLinkBytes) + ")";
  }
  if (status.unreadable > 0) text += kSeparator + formatCount(status.unreadable) + " unreadable";
  if (status.stopped) text += std::string(kSeparator) + "stopped";
  return text;
}

}  // namespace

std::string statusText(const ScanStatus& status) {
  if (status.nodes == 0 && !status.stopped) return "Scanning…";
  const std::string sum = formatSize(status.total) + " in " + formatCount(status.items) + " items";
  if (status.scanning) return sum + kSeparator + "scanning…";
  return sum + endOfScan(status);
}

std::string itemText(const sizewalk::FileTree& tree, sizewalk::NodeId node) {
  const bool unreadable = tree.flags(node).has(sizewalk::NodeFlag::Unreadable);
  return tree.path(node) + (unreadable ? " - cannot be read" : "");
}

std::string selectionText(std::int64_t items, std::int64_t bytes) {
  return formatCount(items) + " selected · " + formatSize(bytes);
}

StatusNote statusNote(const StatusTopics& topics) {
  using enum StatusNote::Cut;
  if (!topics.typed.empty()) return {"Typed: " + std::string(topics.typed), Start};
  if (!topics.button.empty()) return {std::string(topics.button), End};
  if (topics.selected > 1) return {selectionText(topics.selected, topics.selectedBytes), Start};
  if (!topics.item.empty()) return {std::string(topics.item), Start};
  if (!topics.highlighted.empty()) {
    return {"Only " + std::string(topics.highlighted) + "; Escape ends it", End};
  }
  return {};
}

}  // namespace app
