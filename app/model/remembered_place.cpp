#include "app/model/remembered_place.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace app {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using sizewalk::NodeRange;

// Remembering.

auto RememberedPlace::below(StepId step, std::string_view name) -> StepId {
  const auto known = steps_[step].below.find(name);
  if (known != steps_[step].below.end()) return known->second;
  const auto added = static_cast<StepId>(steps_.size());
  steps_[step].below.emplace(name, added);
  steps_.push_back({.above = step});
  return added;
}

/// Goes up no further than to the first folder that is known. Nothing when the tree leads to `node`
/// no more.
auto RememberedPlace::stepOf(const FileTree& tree, NodeId node,
                             std::unordered_map<NodeId, StepId>* known) -> std::optional<StepId> {
  std::vector<NodeId> way;
  while (!known->contains(node)) {
    const NodeId above = tree.parent(node);
    const NodeRange siblings = tree.children(above);
    const bool led = node >= siblings.first && node < siblings.last && !tree.isTakenOut(node);
    if (!led) return std::nullopt;
    way.push_back(node);
    node = above;
  }
  StepId step = known->at(node);
  for (; !way.empty(); way.pop_back()) {
    step = below(step, tree.name(way.back()));
    known->emplace(way.back(), step);
  }
  return step;
}

void RememberedPlace::remember(const FileTree& tree, const MapFocus::Way& focus,
                               const ListPlace& list) {
  const RememberedPlace before = std::exchange(*this, {});
  steps_.emplace_back();
  std::ranges::fill(sought_, true);
  if (tree.nodeCount() > 0) {
    std::unordered_map<NodeId, StepId> known = {{kRootNode, 0}};
    const auto step = [&](NodeId node) { return stepOf(tree, node, &known); };
    for (const NodeId node : list.open) {
      if (const auto open = step(node)) steps_[*open].open = true;
    }
    focus_ = step(focus.current).value_or(0);
    innermost_ = step(focus.innermost).value_or(focus_);
    for (const NodeId node : focus.previous) {
      if (const auto passed = step(node)) previous_.push_back(*passed);
    }
    for (const NodeId node : focus.next) {
      if (const auto passed = step(node)) next_.push_back(*passed);
    }
    if (list.current) current_ = step(*list.current);
    if (list.top) top_ = step(*list.top);
    topAt_ = list.topAt;
  } else {
    steps_[0].open = before.steps_.empty() || before.steps_[0].open;
  }
  if (!before.steps_.empty()) goOnSeeking(before);
}

/// By name, since the folder may not have been looked for yet.
auto RememberedPlace::find(const FileTree& tree, NodeId node) const -> std::optional<StepId> {
  if (steps_.empty()) return std::nullopt;
  std::vector<NodeId> way;
  for (; node != kRootNode; node = tree.parent(node)) way.push_back(node);
  StepId step = 0;
  for (; !way.empty(); way.pop_back()) {
    const auto known = steps_[step].below.find(tree.name(way.back()));
    if (known == steps_[step].below.end()) return std::nullopt;
    step = known->second;
  }
  return step;
}

void RememberedPlace::rememberClosed(const FileTree& tree, NodeId folder) {
  const auto closed = find(tree, folder);
  if (!closed) return;
  std::vector<StepId> steps = {*closed};
  while (!steps.empty()) {
    Step& step = steps_[steps.back()];
    steps.pop_back();
    step.open = false;
    for (const auto& [name, below] : step.below) steps.push_back(below);
  }
}

/// Of the steps, those that lead to something that is sought and was not shown yet, for all that is
/// known.
std::vector<bool> RememberedPlace::stillNeeded() const {
  std::vector<bool> needed(steps_.size());
  const auto need = [&](StepId step) { needed[step] = true; };
  if (seeks(Part::Focus)) {
    need(focus_);
    need(innermost_);
    std::ranges::for_each(previous_, need);
    std::ranges::for_each(next_, need);
  }
  if (seeks(Part::CurrentRow) && current_) need(*current_);
  if (seeks(Part::Scroll) && top_) need(*top_);
  for (std::size_t i = steps_.size(); i-- > 1;) {
    const Step& step = steps_[i];
    if (seeks(Part::OpenRows) && step.open && step.state == State::Sought) needed[i] = true;
    if (needed[i]) needed[step.above] = true;
  }
  return needed;
}

void RememberedPlace::goOnSeeking(const RememberedPlace& before) {
  const std::vector<bool> needed = before.stillNeeded();
  std::vector<std::optional<StepId>> here(before.steps_.size());
  here[0] = 0;
  for (StepId i = 0; i < before.steps_.size(); ++i) {
    for (const auto& [name, inside] : before.steps_[i].below) {
      const Step& step = before.steps_[inside];
      if (!here[i] || !needed[inside] || step.state == State::Gone) continue;
      here[inside] = below(*here[i], name);
      if (before.seeks(Part::OpenRows) && step.state == State::Sought && step.open) {
        steps_[*here[inside]].open = true;
      }
    }
  }
  const auto takeOver = [&](const Ways& ways) {
    Ways taken;
    for (const StepId step : ways) {
      if (here[step]) taken.push_back(*here[step]);
    }
    return taken;
  };
  if (before.seeks(Part::Focus)) {
    focus_ = here[before.focus_].value_or(focus_);
    innermost_ = here[before.innermost_].value_or(innermost_);
    previous_ = takeOver(before.previous_);
    next_ = takeOver(before.next_);
  }
  if (before.seeks(Part::CurrentRow) && before.current_ && here[*before.current_]) {
    current_ = here[*before.current_];
  }
  if (before.seeks(Part::Scroll) && before.top_ && here[*before.top_]) {
    top_ = here[*before.top_];
    topAt_ = before.topAt_;
  }
}

// Finding.

void RememberedPlace::found(StepId step, NodeId node) {
  steps_[step].node = node;
  steps_[step].state = State::Found;
  if (steps_[step].open) newlyOpen_.push_back(node);
  if (!steps_[step].below.empty()) unread_.push_back(step);
}

/// All that a folder holds is published at once, so what is not there now is gone.
void RememberedPlace::match(StepId folder, const FileTree& tree, NodeRange children) {
  std::size_t left = steps_[folder].below.size();
  for (NodeId child = children.first; child < children.last && left > 0; ++child) {
    const auto sought = steps_[folder].below.find(tree.name(child));
    if (sought == steps_[folder].below.end()) continue;
    found(sought->second, child);
    --left;
  }
  for (const auto& [name, step] : steps_[folder].below) {
    if (steps_[step].state == State::Sought) steps_[step].state = State::Gone;
  }
}

void RememberedPlace::lookIn(const FileTree& tree) {
  if (steps_.empty() || tree.nodeCount() == 0) return;
  if (steps_[0].state == State::Sought) found(0, kRootNode);
  std::vector<StepId> unread;
  while (!unread_.empty()) {
    const StepId folder = unread_.back();
    unread_.pop_back();
    const NodeRange children = tree.children(steps_[folder].node);
    if (children.empty()) {
      unread.push_back(folder);
    } else {
      match(folder, tree, children);
    }
  }
  unread_ = std::move(unread);
}

void RememberedPlace::endSearch() {
  for (Step& step : steps_) {
    if (step.state == State::Sought) step.state = State::Gone;
  }
  unread_.clear();
  std::ranges::fill(sought_, false);
}

NodeId RememberedPlace::nearest(StepId step) const {
  while (step != 0 && steps_[step].state != State::Found) step = steps_[step].above;
  return steps_[step].node;
}

std::vector<NodeId> RememberedPlace::foundOf(const Ways& ways) const {
  std::vector<NodeId> nodes;
  for (const StepId step : ways) {
    if (steps_[step].state == State::Found) nodes.push_back(steps_[step].node);
  }
  return nodes;
}

MapFocus::Way RememberedPlace::focus() const {
  return {nearest(focus_), nearest(innermost_), foundOf(previous_), foundOf(next_)};
}

ListPlace RememberedPlace::takeList() {
  ListPlace list;
  list.open = std::exchange(newlyOpen_, {});
  if (current_) list.current = nearest(*current_);
  if (top_) list.top = nearest(*top_);
  list.topAt = topAt_;
  return list;
}

}  // namespace app
