#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sizewalk {

/// A value of a JSON document, and the reader of such documents (RFC 8259). The look-ups never
/// fail: where there is nothing of the wanted kind they give nothing. Any thread.
struct JsonValue {
  using Pointer = std::shared_ptr<const JsonValue>;
  enum class Kind { Null, Boolean, Number, String, Array, Object };

  Kind kind = Kind::Null;
  // The value is in the one of these that its kind names; the others stay empty.
  bool boolean = false;
  double number = 0;
  std::string text;  // any bytes; UTF-8 if the document is
  std::vector<Pointer> items;
  std::map<std::string, Pointer, std::less<>> members;

  /// How many arrays and objects may lie inside each other: reading one takes stack.
  static constexpr int kMaxDepth = 256;

  /// The value that `document` consists of, null when it is anything but one valid value, with
  /// white space around it at most. Of a key given twice the last value is kept.
  ///
  /// Readable are all valid documents but those nested too deep, and more: numbers as `strtod`
  /// reads them in the C locale, which this program never leaves, control characters in strings, a
  /// backslash before any character, which then stands for itself, and "\u" with fewer than four
  /// digits. A surrogate is encoded by itself, without its partner, so that a pair becomes six
  /// bytes that are no UTF-8.
  static Pointer parse(const std::string& document);

  /// The member of an object. Null when there is none by that key, and when `object` is null or
  /// something else.
  static Pointer member(const Pointer& object, std::string_view key);
  /// The text of a member that is a string, otherwise empty.
  static std::string stringMember(const Pointer& object, std::string_view key);
  /// True for the boolean true alone; `value` may be null.
  static bool isTrue(const Pointer& value);
};

}  // namespace sizewalk
