#include "source/expression.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "source/literals.h"

namespace kiln {
namespace {

constexpr int64_t largest = std::numeric_limits<int64_t>::max();
constexpr int64_t smallest = std::numeric_limits<int64_t>::min();

using Values = std::vector<std::pair<std::string_view, int64_t>>;

class Expression : public testing::Test {
 protected:
  Expression() {
    const Values values = {{"START", 0x1234}, {"start2", 7}, {"Start2", 8}, {"page", 255},
                           {"wide", 256},     {"below", -1}, {"a b", 5}};
    for (const auto& [name, value] : values)
      symbols.set(name, value);
  }
  void expectValue(std::string_view text, int64_t value, const std::vector<std::string>& expectedWarnings = {}) {
    warnings.clear();
    EXPECT_EQ(Evaluator(symbols, warnings).evaluate(text), value) << text.substr(0, 100);
    std::vector<std::string> found;
    for (size_t i = 0; i < warnings.size(); ++i)
      found.emplace_back(warnings[i]);
    EXPECT_EQ(found, expectedWarnings);
  }

  SymbolTable symbols;
  MessageList warnings;
};

TEST_F(Expression, HasTheValueOfItsParts) {
  const Values rows = {
      // clang-format off
      {"(2+3)*4",                         20},
      {" 1 + ( 2 - ( 3 - 4 ) ) ",         4},
      {"10-2-3",                          5},
      {"2*3/4*5",                         5},
      {"0-20/3",                          -6},
      {"1+",                              1},
      // "<" and ">" take the whole product after them.
      {"<$1234+1",                        0x35},
      {">0-1",                            0xFF},
      {"1+<$1234+1",                      0x36},
      {"2*<$0103*2",                      12},
      {"1-(>$0203+0)*2",                  -3},
      {"(<$1234)+1",                      0x35},
      // An exact name first, then the first one that differs only in letter case.
      {"START+1",                         0x1235},
      {"start",                           0x1234},
      {"START2",                          7},
      {"a b",                             5},
      {"$12G",                            0x12},
      {"$-5",                             -5},
      {"%102",                            2},
      {"0FFh",                            0xFF},
      {"9223372036854775807+1",           smallest},
      {"9223372036854775807*2",           -2},
      {"(0-9223372036854775807-1)/(0-1)", smallest},
      // clang-format on
  };
  for (const auto& [text, value] : rows)
    expectValue(text, value);
  for (const char* text : {"", "()", "$", "<", "><$1234", ">>$123456", "7/0"})
    expectValue(text, 0);
}

TEST_F(Expression, TakesUnknownNamesAsZeroAndWarnsOfEachFromLeftToRight) {
  const struct {
    std::string text;
    int64_t value;
    std::vector<std::string> unknown;
  } rows[] = {
      // clang-format off
      {"-5",      0,  {"-5"}},
      {"5*-3",    -3, {}},
      {"--5",     -5, {"-"}},
      {"-5-3",    -3, {"-5"}},
      {"*2",      0,  {"*2"}},
      {"b-c*d+b", 0,  {"b", "c", "d", "b"}},
      {"<>q+r",   0,  {"q", "r"}},
      {"1+x y",   1,  {"x y"}},
      {"a+b)",    0,  {"a+b)"}},
      {"x+(a+b",  0,  {"x+(a", "b"}},
      {"(1)(2)",  0,  {"1)(2"}},
      {"(",       0,  {"("}},
      // clang-format on
  };
  for (const auto& [text, value, unknown] : rows) {
    std::vector<std::string> expected;
    for (const std::string& name : unknown)
      expected.push_back("undefined symbol '" + name + "', using 0");
    expectValue(text, value, expected);
  }
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
  Evaluator evaluator(symbols, warnings);
  const Values rows = {
      // clang-format off
      {"$FF",   255},
      {"$",     0},
      {"$-1",   -1},
      {" 255 ", 255},
      {"%11",   3},
      {"page",  255},
      {"wide",  256},
      {"below", -1},
      // clang-format on
  };
  for (const auto& [text, value] : rows)
    EXPECT_EQ(evaluator.sizingValue(text, nameHash(text)), value) << text;
  for (const char* other : {"PAGE", "page+1", "(page)", "<page", "0Fh", "later", "-1", ""})
    EXPECT_EQ(evaluator.sizingValue(other, nameHash(other)), 256) << other;
  symbols.set("12", 300);
  EXPECT_EQ(evaluator.sizingValue("12", 0), 12);
  EXPECT_TRUE(warnings.empty());
}

TEST_F(Expression, MayHaveAnyLengthAndDepth) {
  std::string deep, sum = "0", prefixes(1000000, '<');
  for (int i = 0; i < 100000; ++i)
    deep += "(1+";
  deep += "1" + std::string(100000, ')');
  for (int i = 0; i < 1000000; ++i)
    sum += "+1*1";
  expectValue(deep, 100001);
  expectValue(sum, 1000000);
  expectValue(prefixes + "$1234", 0x34);
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
      {"- 5",                0},
      {"0x1F",               0x1F},
      {"-0x10",              -0x10},
      {"0X",                 0},
      {"",                   0},
      {"8000000000000000",   smallest},
      {"FFFFFFFFFFFFFFFF0",  -1},
      {"-FFFFFFFFFFFFFFFF0", -1},
      {"1000000000000000F",  -1},
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
  const Values rows = {{" $10\t", 16}, {"%11", 3}, {"0Fh", 15}, {"12", 12}};
  for (const auto& [text, value] : rows)
    EXPECT_EQ(parseDefinition(text), value) << text;
  for (const char* other : {"", "abc", "-1", "1+1", "0x10"})
    EXPECT_EQ(parseDefinition(other), 0) << other;
}

TEST(LeadingSymbol, IsTheNameAtTheStart) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {" main.loop+3", "main.loop"}, {".x", ".x"}, {"_a1 b", "_a1"}, {"1a", ""}, {"(a)", ""}, {"<a", ""}, {"", ""}};
  for (const auto& [text, name] : cases)
    EXPECT_EQ(leadingSymbol(text), name) << text;
}

}  // namespace
}  // namespace kiln
