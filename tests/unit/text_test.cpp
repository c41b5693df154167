// Paths, and the two rules of UTF-8.
#include <gtest/gtest.h>

#include "base/paths.h"
#include "base/utf8.h"
#include "support/program.h"

namespace kiln {

TEST(Paths, AreTakenApartAtTheirSlashesAndTheLastDot) {
  const struct {
    std::string path, normalised, last, directory, extension, stem;
  } rows[] = {
      // clang-format off
      // path          normalised   last        dir.   ext.   stem
      {"",             "",          "",         "",    "",    ""},
      {"///",          "/",         "",         "/",   "",    "/"},
      {"a//b/",        "a/b",       "",         "a",   "",    "a/b"},
      {"/g.asm",       "/g.asm",    "g.asm",    "/",   "asm", "/g"},
      {"x//y///g.a.b", "x/y/g.a.b", "g.a.b",    "x/y", "b",   "x/y/g.a"},
      {"x.y/g",        "x.y/g",     "g",        "x.y", "",    "x.y/g"},
      {"x/.pro",       "x/.pro",    ".pro",     "x",   "",    "x/.pro"},
      {".a.b",         ".a.b",      ".a.b",     "",    "b",   ".a"},
      {"a.",           "a.",        "a.",       "",    "",    "a."},
      {"a.b c",        "a.b c",     "a.b c",    "",    "",    "a.b c"},
      {"a b.c",        "a b.c",     "a b.c",    "",    "c",   "a b"},
      {"\\a\\b.c",     "\\a\\b.c",  "\\a\\b.c", "",    "c",   "\\a\\b"},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(normalisePath(row.path), row.normalised);
    EXPECT_EQ(lastComponent(row.path), row.last);
    EXPECT_EQ(directoryPart(row.path), row.directory);
    EXPECT_EQ(pathExtension(row.path), row.extension);
    EXPECT_EQ(pathStem(row.path), row.stem);
  }
  EXPECT_EQ(joinPaths("", "x/"), "x");
  EXPECT_EQ(joinPaths("/", "x/"), "/x");
  EXPECT_EQ(joinPaths("a//b/", "x/"), "a/b/x");
}

TEST(Utf8, HasALaxRuleAndAStrictOne) {
  const std::vector<std::string> bothRules = {
      "",         "00",       "7F",       "C2 80",    "DF BF",       "C3 A0 C3 A0", "E0 A0 80",    "E1 80 80",
      "ED 9F BF", "EE 80 80", "EF BF BF", "EC BF BF", "F1 80 80 80", "F0 90 80 80", "F3 BF BF BF", "F4 8F BF BF"};
  const std::vector<std::string> laxRuleOnly = {"E0 80 80",    "E0 9F BF",    "ED A0 80",    "ED BF BF",
                                                "F0 80 80 80", "F0 8F BF BF", "F4 90 80 80", "F4 BF BF BF"};
  const std::vector<std::string> neitherRule = {
      "80",       "BF",          "C0 80",    "C1 BF",       "F5 80 80 80", "FF",          "C2",
      "C2 7F",    "DF C0",       "C2 80 80", "E1",          "E1 80",       "E1 7F 80",    "E1 80 7F",
      "EF BF C0", "E1 80 80 80", "F1 80 80", "F1 7F 80 80", "F1 80 C0 80", "F1 80 80 7F", "F3 80 80 C0"};
  const auto expectRules = [](const std::vector<std::string>& forms, bool isLax, bool isStrict) {
    for (const std::string& form : forms) {
      // At every distance from the start and the end of some ASCII, and before a byte that does not belong to the text.
      for (size_t i = 0; i < 30; ++i) {
        const std::string text = std::string(i % 10, 'a') + test::bytes(form) + std::string(i / 10 * 4, 'z');
        const std::string room = text + "\x80";
        EXPECT_EQ(isUtf8({room.data(), text.size()}), isLax) << form;
        EXPECT_EQ(isStrictUtf8({room.data(), text.size()}), isStrict) << form;
      }
    }
  };
  expectRules(bothRules, true, true);
  expectRules(laxRuleOnly, true, false);
  expectRules(neitherRule, false, false);
}

TEST(Utf8, IsCountedInUtf16Units) {
  EXPECT_EQ(utf16Length(test::bytes("C3 A0 7F DF BF EF BF BF F0 90 80 80 80 F4 80 80 80")), 8U);
}

}  // namespace kiln
