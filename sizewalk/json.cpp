#include "sizewalk/json.h"

#include <cstddef>
#include <cstdlib>
#include <utility>

namespace sizewalk {

namespace {

using Kind = JsonValue::Kind;

bool isWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Appends a code unit of UTF-16 as if it were a character of its own, which surrogates are not.
void appendCodeUnit(std::string* text, unsigned long unit) {
  const auto append = [text](unsigned long byte) { text->push_back(static_cast<char>(byte)); };
  if (unit <= 0x7F) {
    append(unit);
  } else if (unit <= 0x7FF) {
    append(0xC0 | unit >> 6);
    append(0x80 | (unit & 0x3F));
  } else {
    append(0xE0 | unit >> 12);
    append(0x80 | (unit >> 6 & 0x3F));
    append(0x80 | (unit & 0x3F));
  }
}

/// Reads one document by recursive descent. What reads a part of it returns false where the
/// document is not valid; nothing is read any more after that.
class Reader {
 public:
  explicit Reader(const std::string& document) : document_(document) {}

  JsonValue::Pointer read() {
    const JsonValue::Pointer value = readValue();
    skipWhiteSpace();
    return position_ == document_.size() ? value : nullptr;
  }

 private:
  bool atEnd() const { return position_ == document_.size(); }

  void skipWhiteSpace() {
    while (!atEnd() && isWhiteSpace(document_[position_])) ++position_;
  }

  /// Takes `c` where it comes next, after white space.
  bool take(char c) {
    skipWhiteSpace();
    if (atEnd() || document_[position_] != c) return false;
    ++position_;
    return true;
  }

  bool takeWord(std::string_view word) {
    if (document_.compare(position_, word.size(), word) != 0) return false;
    position_ += word.size();
    return true;
  }

  /// Null where there is no valid value.
  JsonValue::Pointer readValue() {
    const auto value = std::make_shared<JsonValue>();
    return readInto(value.get()) ? value : nullptr;
  }

  bool readInto(JsonValue* value) {
    skipWhiteSpace();
    if (atEnd()) return false;
    switch (document_[position_]) {
      case '{':
        return readNested(Kind::Object, value);
      case '[':
        return readNested(Kind::Array, value);
      case '"':
        value->kind = Kind::String;
        return readString(&value->text);
      default:
        return readWord(value) || readNumber(value);
    }
  }

  bool readWord(JsonValue* value) {
    if (takeWord("null")) return true;  // as every value begins
    value->boolean = takeWord("true");
    if (!value->boolean && !takeWord("false")) return false;
    value->kind = Kind::Boolean;
    return true;
  }

  bool readNumber(JsonValue* value) {
    // White space elsewhere, which strtod would skip.
    constexpr std::string_view kOtherWhiteSpace = "\v\f";
    if (kOtherWhiteSpace.find(document_[position_]) != std::string_view::npos) return false;
    const char* const start = document_.c_str() + position_;
    char* end = nullptr;
    value->kind = Kind::Number;
    value->number = std::strtod(start, &end);
    position_ += static_cast<std::size_t>(end - start);
    return end != start;
  }

  bool readNested(Kind kind, JsonValue* value) {
    if (depth_ == JsonValue::kMaxDepth) return false;
    ++depth_;
    value->kind = kind;
    const bool valid = kind == Kind::Object ? readObject(value) : readArray(value);
    --depth_;
    return valid;
  }

  bool readObject(JsonValue* value) {
    take('{');
    if (take('}')) return true;
    do {
      if (!readMember(value)) return false;
    } while (take(','));
    return take('}');
  }

  bool readMember(JsonValue* value) {
    std::string key;
    if (!readString(&key) || !take(':')) return false;
    JsonValue::Pointer member = readValue();
    if (!member) return false;
    value->members.insert_or_assign(std::move(key), std::move(member));
    return true;
  }

  bool readArray(JsonValue* value) {
    take('[');
    if (take(']')) return true;
    do {
      JsonValue::Pointer item = readValue();
      if (!item) return false;
      value->items.push_back(std::move(item));
    } while (take(','));
    return take(']');
  }

  bool readString(std::string* text) {
    if (!take('"')) return false;
    while (!atEnd()) {
      const char c = document_[position_++];
      if (c == '"') return true;
      if (c != '\\') {
        text->push_back(c);
      } else if (!readEscape(text)) {
        return false;
      }
    }
    return false;
  }

  /// What follows a backslash.
  bool readEscape(std::string* text) {
    if (atEnd()) return false;
    const char c = document_[position_++];
    constexpr std::string_view kNames = "bfnrt";
    constexpr std::string_view kMeanings = "\b\f\n\r\t";
    if (c == 'u') {
      appendCodeUnit(text, readCodeUnit());
    } else if (const std::size_t index = kNames.find(c); index != std::string_view::npos) {
      text->push_back(kMeanings[index]);
    } else {
      text->push_back(c);
    }
    return true;
  }

  /// Of as many of four hexadecimal digits as there are; 0 of none.
  unsigned long readCodeUnit() {
    std::string digits;
    while (digits.size() < 4 && !atEnd() && isHexDigit(document_[position_])) {
      digits.push_back(document_[position_++]);
    }
    return std::strtoul(digits.c_str(), nullptr, 16);
  }

  const std::string& document_;
  std::size_t position_ = 0;
  int depth_ = 0;  // of arrays and objects that have begun and not ended
};

}  // namespace

JsonValue::Pointer JsonValue::parse(const std::string& document) { return Reader(document).read(); }

JsonValue::Pointer JsonValue::member(const Pointer& object, std::string_view key) {
  if (!object) return nullptr;
  const auto found = object->members.find(key);  // only objects have any
  return found == object->members.end() ? nullptr : found->second;
}

std::string JsonValue::stringMember(const Pointer& object, std::string_view key) {
  const Pointer value = member(object, key);
  return value ? value->text : std::string();  // only strings have any
}

bool JsonValue::isTrue(const Pointer& value) { return value && value->boolean; }

}  // namespace sizewalk
