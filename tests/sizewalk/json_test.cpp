#include "sizewalk/json.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace sizewalk {
namespace {

using Kind = JsonValue::Kind;

JsonValue::Pointer parse(const std::string& document) { return JsonValue::parse(document); }

/// The text of a document that is one string; "(invalid)" when it is none.
std::string textOf(const std::string& document) {
  const JsonValue::Pointer value = parse(document);
  return value && value->kind == Kind::String ? value->text : "(invalid)";
}

/// The number that a document consists of; -1 when it is none.
double numberOf(const std::string& document) {
  const JsonValue::Pointer value = parse(document);
  return value && value->kind == Kind::Number ? value->number : -1;
}

std::string repeated(std::string_view text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

std::string nestedArrays(int depth) { return repeated("[", depth) + repeated("]", depth); }
std::string nestedObjects(int depth) {
  return repeated(R"({"a":)", depth) + "1" + repeated("}", depth);
}

TEST(JsonValue, ReadsEveryKind) {
  const JsonValue::Pointer value =
      parse(R"({"n":null,"t":true,"f":false,"d":-1.5e2,"s":"text","a":[1,"two",[]],"o":{}})");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->kind, Kind::Object);
  EXPECT_EQ(value->members.size(), 7u);
  EXPECT_EQ(value->members.at("n")->kind, Kind::Null);
  EXPECT_EQ(value->members.at("t")->kind, Kind::Boolean);
  EXPECT_TRUE(value->members.at("t")->boolean);
  EXPECT_EQ(value->members.at("f")->kind, Kind::Boolean);
  EXPECT_FALSE(value->members.at("f")->boolean);
  EXPECT_EQ(value->members.at("d")->kind, Kind::Number);
  EXPECT_EQ(value->members.at("d")->number, -150);
  EXPECT_EQ(value->members.at("s")->kind, Kind::String);
  EXPECT_EQ(value->members.at("s")->text, "text");
  EXPECT_EQ(value->members.at("o")->kind, Kind::Object);
  const JsonValue::Pointer array = value->members.at("a");
  EXPECT_EQ(array->kind, Kind::Array);
  ASSERT_EQ(array->items.size(), 3u);
  EXPECT_EQ(array->items[0]->number, 1);
  EXPECT_EQ(array->items[1]->text, "two");
  EXPECT_EQ(array->items[2]->kind, Kind::Array);
}

TEST(JsonValue, MayBeAnyValueByItself) {
  EXPECT_EQ(textOf(R"("alone")"), "alone");
  EXPECT_EQ(numberOf("7"), 7);
  ASSERT_TRUE(parse("null"));
  EXPECT_EQ(parse("null")->kind, Kind::Null);
  EXPECT_TRUE(JsonValue::isTrue(parse("true")));
  ASSERT_TRUE(parse("[]"));
  EXPECT_TRUE(parse("[]")->items.empty());
  ASSERT_TRUE(parse("{}"));
  EXPECT_TRUE(parse("{}")->members.empty());
}

TEST(JsonValue, TakesFourCharactersForWhiteSpace) {
  const JsonValue::Pointer value = parse(" \t\r\n{ \t\r\n\"a\"\n:\r[ 1 ,\t2 ] , \"b\" : { } }\n ");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->members.at("a")->items.size(), 2u);
  EXPECT_EQ(value->members.size(), 2u);
  for (const char* other : {"\v1", "\f1", "[\v1]", "[1\f]", "\xC2\xA0", "\xEF\xBB\xBF{}"}) {
    EXPECT_FALSE(parse(other)) << other;
  }
}

TEST(JsonValue, OrdersMembersByTheirBytes) {
  const JsonValue::Pointer value = parse("{\"\xC3\xA9\":1,\"b\":2,\"B\":3,\"\":4}");
  ASSERT_TRUE(value);
  std::string keys;
  for (const auto& [key, member] : value->members) keys += key + "|";
  EXPECT_EQ(keys, "|B|b|\xC3\xA9|");
}

TEST(JsonValue, KeepsTheLastOfARepeatedKey) {
  const JsonValue::Pointer value = parse(R"({"a":1,"b":2,"a":"last"})");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->members.size(), 2u);
  EXPECT_EQ(JsonValue::stringMember(value, "a"), "last");
}

TEST(JsonValue, ResolvesEscapes) {
  EXPECT_EQ(textOf(R"("\b\f\n\r\t\"\\\/")"), "\b\f\n\r\t\"\\/");
  EXPECT_EQ(textOf(R"("a\qb\'")"), "aqb'");
  EXPECT_EQ(textOf(R"("\\u0041")"), "\\u0041");
  EXPECT_EQ(parse(R"({"a\"b":1})")->members.count("a\"b"), 1u);
}

TEST(JsonValue, WritesCodeUnitsInOneTwoOrThreeBytes) {
  EXPECT_EQ(textOf(R"("\u00e9")"), "\xC3\xA9");
  EXPECT_EQ(textOf(R"("\u00E9x")"), "\xC3\xA9x");
  EXPECT_EQ(textOf(R"("\u007f\u0080")"), "\x7F\xC2\x80");
  EXPECT_EQ(textOf(R"("\u07ff\u0800")"), "\xDF\xBF\xE0\xA0\x80");
  EXPECT_EQ(textOf(R"("\uffff")"), "\xEF\xBF\xBF");
  EXPECT_EQ(textOf(R"("\u0000")"), std::string(1, '\0'));
}

TEST(JsonValue, LeavesSurrogatesApart) {
  EXPECT_EQ(textOf(R"("\ud83d\ude00")"), "\xED\xA0\xBD\xED\xB8\x80");
}

TEST(JsonValue, TakesFewerThanFourDigitsAsTheyAre) {
  EXPECT_EQ(textOf(R"("\u41")"), "A");
  EXPECT_EQ(textOf(R"("\u41 1")"), "A 1");
  EXPECT_EQ(textOf(R"("\u00411")"), "A1");
  EXPECT_EQ(textOf(R"("\u-041")"), std::string(1, '\0') + "-041");
  EXPECT_EQ(textOf(R"("\u0x41")"), std::string(1, '\0') + "x41");
  EXPECT_EQ(textOf(R"("\u")"), std::string(1, '\0'));
}

TEST(JsonValue, KeepsTheBytesOfAString) {
  EXPECT_EQ(textOf("\"line\nbreak \xFF \xC3\xA9\""), "line\nbreak \xFF \xC3\xA9");
  EXPECT_EQ(textOf(std::string("\"a\0b\"", 5)), std::string("a\0b", 3));
}

TEST(JsonValue, ReadsNumbersAsTheLibraryDoes) {
  EXPECT_EQ(numberOf("0"), 0);
  EXPECT_EQ(numberOf("-0.25"), -0.25);
  EXPECT_EQ(numberOf("1E+3"), 1000);
  EXPECT_EQ(numberOf("0x10"), 16);
  EXPECT_EQ(numberOf("+.5"), .5);
  EXPECT_EQ(numberOf("9007199254740993"), 9007199254740992.0);
}

TEST(JsonValue, RejectsNumbersThatCannotBeRead) {
  for (const char* document : {"-", "+", ".", "e5", "1e", "1.5.5", "--1", "1-", "[1 2]", "1_000"}) {
    EXPECT_FALSE(parse(document)) << document;
  }
}

TEST(JsonValue, RejectsWhatIsNotOneValue) {
  for (const char* document : {"", " ", "nul", "True", "tru", "truefalse", "hello", "'a'", "}", "]",
                               ",", ":", "/* */ 1", "{} {}", "1,", "{}x", "[]]", "\"a\"\"b\""}) {
    EXPECT_FALSE(parse(document)) << document;
  }
  EXPECT_FALSE(parse(std::string("{}\0", 3)));
  EXPECT_FALSE(parse(std::string("1\0", 2)));
}

TEST(JsonValue, RejectsBrokenObjects) {
  for (const char* document :
       {"{", "{\"a\"", "{\"a\":", "{\"a\":1", "{\"a\":1,", "{\"a\":1,}", "{,}", "{\"a\"}",
        "{\"a\" 1}", "{a:1}", "{1:1}", "{\"a\":1 \"b\":2}", "{\"a\":1]", "{\"a\":}", "{null:1}"}) {
    EXPECT_FALSE(parse(document)) << document;
  }
}

TEST(JsonValue, RejectsBrokenArraysAndStrings) {
  for (const char* document : {"[", "[1", "[1,", "[1,]", "[,1]", "[,]", "[1}", "[\"a\" \"b\"]",
                               "\"", "\"a", "\"a\\", "\"a\\\"", "\"\\u", "\"\\u00", "[\"a]"}) {
    EXPECT_FALSE(parse(document)) << document;
  }
}

TEST(JsonValue, EndsWithEveryCutOfADocument) {
  const std::string document = R"( {"a\u00e9":[1,-2.5e3,"x\n"],"b":{"c":null,"d":[true,false]}})";
  ASSERT_TRUE(parse(document));
  for (std::size_t length = 0; length < document.size(); ++length) {
    EXPECT_FALSE(parse(document.substr(0, length))) << length;
  }
}

TEST(JsonValue, HasALimitToNesting) {
  EXPECT_EQ(JsonValue::kMaxDepth, 256);
  EXPECT_TRUE(parse(nestedArrays(256)));
  EXPECT_FALSE(parse(nestedArrays(257)));
  EXPECT_TRUE(parse(nestedObjects(256)));
  EXPECT_FALSE(parse(nestedObjects(257)));
  EXPECT_FALSE(parse(repeated("[", 100'000)));
  EXPECT_FALSE(parse(repeated(R"({"a":)", 100'000)));
}

TEST(JsonValue, CountsNestingAndNotNeighbours) {
  const JsonValue::Pointer value = parse("[" + repeated("[[]],{},", 1000) + "0]");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->items.size(), 2001u);
}

TEST(JsonValue, FindsMembers) {
  const JsonValue::Pointer value =
      parse(R"({"text":"a","empty":"","number":1,"yes":true,"list":[]})");
  ASSERT_TRUE(JsonValue::member(value, "number"));
  EXPECT_EQ(JsonValue::member(value, "number")->number, 1);
  EXPECT_FALSE(JsonValue::member(value, "missing"));
  EXPECT_EQ(JsonValue::stringMember(value, "text"), "a");
  EXPECT_EQ(JsonValue::stringMember(value, "empty"), "");
  EXPECT_EQ(JsonValue::stringMember(value, "missing"), "");
  EXPECT_EQ(JsonValue::stringMember(value, "number"), "");
  EXPECT_EQ(JsonValue::stringMember(value, "list"), "");
}

TEST(JsonValue, GivesNothingForTheWrongKind) {
  for (const char* document : {"null", "true", "1", "\"a\"", "[\"a\",1]"}) {
    EXPECT_FALSE(JsonValue::member(parse(document), "a")) << document;
    EXPECT_EQ(JsonValue::stringMember(parse(document), "a"), "") << document;
  }
  EXPECT_FALSE(JsonValue::member(nullptr, "a"));
  EXPECT_EQ(JsonValue::stringMember(nullptr, "a"), "");
}

TEST(JsonValue, IsTrueForTheBooleanAlone) {
  EXPECT_TRUE(JsonValue::isTrue(parse("true")));
  for (const char* other : {"false", "null", "1", "\"true\"", "[true]", "{\"true\":true}"}) {
    EXPECT_FALSE(JsonValue::isTrue(parse(other))) << other;
  }
  EXPECT_FALSE(JsonValue::isTrue(nullptr));
}

/// Every document either is read or is not; nothing else happens, and the sanitizers watch.
TEST(JsonValue, SurvivesRandomDocuments) {
  constexpr std::string_view kPieces = "{}[]\",:\\u0aetrufalsn-1. \n";
  std::mt19937 random(1);
  int valid = 0;
  for (int round = 0; round < 200'000; ++round) {
    std::string document;
    for (std::size_t length = random() % 12; length > 0; --length) {
      document += kPieces[random() % kPieces.size()];
    }
    if (parse(document)) ++valid;
  }
  EXPECT_GT(valid, 1000);
  EXPECT_LT(valid, 100'000);
}

}  // namespace
}  // namespace sizewalk
