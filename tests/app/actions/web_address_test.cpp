#include "app/actions/web_address.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/model/product.h"
#include "tests/app/actions/fake_program.h"

namespace app {
namespace {

TEST(IsWebAddress, TakesBothSchemesOfTheWeb) {
  for (const char* address :
       {"http://a", "https://a", "HTTPS://A.EXAMPLE/", "hTtP://a.example:8080/b/c?d=e&f=%20#g",
        "https://[::1]/", "https://user@a.example/~x/(y)", kProductPage, kMakerPage}) {
    EXPECT_TRUE(isWebAddress(address)) << address;
  }
}

TEST(IsWebAddress, TakesNothingElse) {
  for (const char* address : {"",
                              "http",
                              "http:",
                              "http:/a",
                              "http:a",
                              "http://",
                              "https://",
                              "https:///etc/passwd",
                              "http://?a",
                              "http://#a",
                              "file:///etc/passwd",
                              "ftp://a.example",
                              "javascript:alert(1)",
                              "data:text/html,x",
                              "mailto:a@b.example",
                              "a.example",
                              "//a.example",
                              "/bin/sh",
                              "--help",
                              "-http://a",
                              " https://a.example",
                              "httpss://a",
                              "https//a",
                              "xhttp://a",
                              "smb://http://a"}) {
    EXPECT_FALSE(isWebAddress(address)) << address;
  }
}

TEST(IsWebAddress, TakesNoByteThatAnAddressCannotHave) {
  for (const char* address :
       {"https://a b", "https://a\n", "https://a\tb", "https://a\"b", "https://a`b", "https://a\\b",
        "https://a<b>", "https://a|b", "https://a{b}", "https://a^b", "https://\xC3\xA9.example",
        "https://a\xFF", "https://a\x7F", "https://\x1B[2J"}) {
    EXPECT_FALSE(isWebAddress(address)) << address;
  }
  EXPECT_FALSE(isWebAddress(std::string_view("https://a\0b", 11)));
}

TEST(OpenWebAddress, HandsTheAddressToTheDesktop) {
  test::FakePrograms programs;
  programs.addRecorder("xdg-open");
  EXPECT_TRUE(openWebAddress("https://a.example/b?c=d&e"));
  EXPECT_EQ(programs.argumentsOf("xdg-open"),
            std::vector<std::string>{"https://a.example/b?c=d&e"});
}

TEST(OpenWebAddress, StartsNothingForAnythingElse) {
  test::FakePrograms programs;
  programs.addRecorder("xdg-open");
  for (const char* address : {"file:///etc/passwd", "/bin/sh", "--help", "", "https://a b"}) {
    EXPECT_FALSE(openWebAddress(address)) << address;
  }
  // The one that is opened is the first to arrive.
  EXPECT_TRUE(openWebAddress("https://last.example"));
  EXPECT_EQ(programs.argumentsOf("xdg-open"), std::vector<std::string>{"https://last.example"});
}

}  // namespace
}  // namespace app
