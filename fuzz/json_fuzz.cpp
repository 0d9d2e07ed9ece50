// The JSON reader on any bytes: no finding of a sanitizer, and what it gives is well formed.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "sizewalk/json.h"

namespace {

using sizewalk::JsonValue;

void demand(bool holds) {
  if (!holds) std::abort();
}

/// Each value holds what its kind says and nothing else, down to the allowed depth.
void walk(const JsonValue& value, int depth) {
  using Kind = JsonValue::Kind;
  demand(depth <= JsonValue::kMaxDepth);
  demand(value.kind == Kind::Boolean || !value.boolean);
  demand(value.kind == Kind::Number || value.number == 0);
  demand(value.kind == Kind::String || value.text.empty());
  demand(value.kind == Kind::Array || value.items.empty());
  demand(value.kind == Kind::Object || value.members.empty());
  for (const JsonValue::Pointer& item : value.items) {
    demand(item != nullptr);
    walk(*item, depth + 1);
  }
  for (const auto& [key, member] : value.members) {
    demand(member != nullptr);
    walk(*member, depth + 1);
  }
}

void lookUp(const JsonValue::Pointer& value) {
  const JsonValue::Pointer latest = JsonValue::member(value, "latest");
  static_cast<void>(JsonValue::stringMember(latest, "version"));
  static_cast<void>(JsonValue::stringMember(value, "downloads"));
  demand(!JsonValue::isTrue(value) || value->kind == JsonValue::Kind::Boolean);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string document(data, data + size);
  const JsonValue::Pointer value = JsonValue::parse(document);
  if (value) walk(*value, 0);
  lookUp(value);
  return 0;
}
