#include "source/expression.h"

#include <gtest/gtest.h>

#include <limits>

#include "source/literals.h"
#include "support/program.h"

namespace kiln {
namespace {

constexpr int64_t largest = std::numeric_limits<int64_t>::max();
constexpr int64_t smallest = std::numeric_limits<int64_t>::min();

using Values = std::vector<std::pair<std::string_view, int64_t>>;

struct Expression : testing::Test {
  Expression() {
    for (const auto& [name, value] : Values{{"START", 0x1234}, {"start2", 7}, {"Start2", 8}, {"page", 255}, {"a b", 5}})
      symbols.set(name, value);
  }
  void expectValue(std::string_view text, int64_t value, const std::vector<std::string>& expectedWarnings = {}) {
    warnings.clear();
    EXPECT_EQ(Evaluator(symbols, warnings).evaluate(text), value) << text;
    EXPECT_EQ(test::texts(warnings), expectedWarnings);
  }

  SymbolTable symbols;
  MessageList warnings;
};

// An expression, its value, and the names in it that are not known.
struct Row {
  std::string_view text;
  int64_t value;
  std::vector<std::string> unknown = {};
};

TEST_F(Expression, HasTheValueOfItsParts) {
  const Row rows[] = {
      // clang-format off
      {"",                                0},
      {"()",                              0},
      {"(2+3)*4",                         20},
      {" 1 + ( 2 - ( 3 - 4 ) ) ",         4},
      {"10-2*3/4*5-2",                    3},
      {"0-20/3",                          -6},
      {"7/0",                             0},
      // A missing operand is 0, and the first character is no operator.
      {" 9 +- 2 -",                       7},
      {"*+page-5",                        250, {"*"}},
      // "<" and ">" take the whole product after them.
      {"1+<$1234+1",                      0x36},
      {"2*<$0103*2",                      12},
      {"1-(>$0203+0)*2",                  -3},
      {"><$1234",                         0},
      // An exact name first, then the first one that differs only in letter case.
      {"START+1",                         0x1235},
      {"start",                           0x1234},
      {"START2",                          7},
      {"a b",                             5},
      {"$",                               0},
      {"$12G",                            0x12},
      {"$-5",                             -5},
      {"%102",                            2},
      {"0FFh",                            0xFF},
      {"9223372036854775807+1",           smallest},
      {"9223372036854775807*2",           -2},
      {"(0-9223372036854775807-1)/(0-1)", smallest},
      // Each unknown name is 0 and is warned of, from left to right.
      {"-5",                              0,  {"-5"}},
      {"5*-3",                            -3},
      {"--5",                             -5, {"-"}},
      {"b-c*d+b",                         0,  {"b", "c", "d", "b"}},
      {"<>q+r",                           0,  {"q", "r"}},
      {"1+x y",                           1,  {"x y"}},
      {"a+b)",                            0,  {"a+b)"}},
      {"x+(a+b",                          0,  {"x+(a", "b"}},
      // clang-format on
  };
  for (const auto& [text, value, unknown] : rows)
    expectValue(text, value, test::undefined(unknown));
}

TEST_F(Expression, PrefersALabelToTheNumberItLooksLikeAndSaysSoOnce) {
  symbols.set("0FFh", 3);
  symbols.set("12", 4);
  const std::string warning =
      "label '0FFh' is ambiguous with Z80-style hex literal; resolving to the label — rename it or use $0FF to "
      "silence this warning";
  expectValue("0FFh+0FFh", 6, {warning});
  expectValue("0FFh", 3, {warning});  // by an evaluator of its own
  expectValue("12", 4);
}

TEST_F(Expression, IsSizedByPlainLiteralsAndKnownNamesOnly) {
  symbols.set("12", 300);
  Evaluator evaluator(symbols, warnings);
  for (const auto& [text, value] : Values{{"$FF", 255}, {"$", 0}, {"$-1", -1}, {" 255 ", 255}, {"%11", 3}, {"12", 12}})
    EXPECT_EQ(evaluator.sizingValue(text, nameHash(text)), value) << text;
  EXPECT_EQ(evaluator.sizingValue("page", nameHash("page")), 255);
  for (const char* other : {"PAGE", "page+1", "(page)", "<page", "0Fh", "later", "-1", ""})
    EXPECT_EQ(evaluator.sizingValue(other, nameHash(other)), 256) << other;
  EXPECT_TRUE(warnings.empty());
}

// All have the same loose hash; those of letters are the same name in other cases, those of brackets are not.
TEST(Symbols, AreFoundAmongThousandsOfNamesThatLookAlike) {
  for (const std::string prefix : {"", "begin", "behind_a_rather_long_beginning_"}) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < 0x4000; ++i) {
      names.push_back(prefix + "[[[[[[[[[[[[[[x");
      names.push_back(prefix + "abcdefghijklmn");
      for (unsigned bit = 0; bit < 14; ++bit) {
        const char changed = (i >> bit & 1) != 0 ? ' ' : '\0';
        names[2 * i][prefix.size() + bit] ^= changed;
        names[2 * i + 1][prefix.size() + bit] ^= changed;
      }
    }
    SymbolTable symbols;
    for (size_t i = 0; i < names.size(); ++i)
      symbols.set(names[i], static_cast<int64_t>(i));
    for (size_t i = 0; i < names.size(); ++i) {
      ASSERT_EQ(symbols.find(names[i])->value, i);
      const std::string other = names[i].substr(0, names[i].size() - 1) + (i % 2 == 0 ? "X" : "N");
      ASSERT_EQ(symbols.findIgnoringCase(other, symbolHash(other))->value, i % 2 == 0 ? i : 1);
    }
    const std::string absent = prefix + "[[[[[[[[[[[[[[y";
    EXPECT_EQ(symbols.find(absent), nullptr);
    EXPECT_EQ(symbols.findIgnoringCase(absent, symbolHash(absent)), nullptr);
  }
}

TEST(Literals, FollowTheRulesOfTheirRadix) {
  const Values hexadecimal = {
      // clang-format off
      {" \t\n\r\v\f1f",      0x1F},
      {"-5",                 -5},
      {"-0x10",              -0x10},
      {"0X",                 0},
      {"",                   0},
      {"8000000000000000",   smallest},
      {"-FFFFFFFFFFFFFFFF0", -1},
      // clang-format on
  };
  for (const auto& [text, value] : hexadecimal)
    EXPECT_EQ(parseRadix(text, 16), value) << text;
  EXPECT_EQ(parseRadix("1012", 2), 5);
  EXPECT_EQ(parseRadix("0x1", 2), 0);
  EXPECT_EQ(parseDecimal("9223372036854775807"), largest);
  EXPECT_EQ(parseDecimal("9223372036854775808"), largest);
  EXPECT_EQ(parseDecimal("922337203685477579"), 922337203685477579);
}

TEST(Literals, OfADefinitionAreNumbersInAnyNotationOrZero) {
  for (const auto& [text, value] : Values{{" $10\t", 16}, {"%11", 3}, {"0Fh", 15}, {"12", 12}, {"abc", 0}, {"1+1", 0}})
    EXPECT_EQ(parseDefinition(text), value) << text;
}

}  // namespace
}  // namespace kiln
