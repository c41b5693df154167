// Physical lines, looked at in blocks of 64 bytes.
#include "source/line_text.h"

#include <gtest/gtest.h>

#include <string>

#include "base/text_store.h"
#include "source/data_items.h"

namespace kiln::test {
namespace {

// Trailing blanks change nothing, but a line longer than a block is looked at in another way.
TEST(LineShape, IsTheSameForShortAndLongLines) {
  TextStore texts;
  const std::string specials[] = {"\"", ";", ":", "=", ",", ".", "\t", "\r", std::string(1, '\0'), " : ", "; longbr"};
  for (size_t size : {0u, 1u, 31u, 32u, 33u, 62u, 63u, 64u, 65u, 66u}) {
    for (const std::string& special : specials) {
      for (size_t at = 0; at + special.size() <= size; ++at) {
        const std::string line = std::string(size, 'a').replace(at, special.size(), special);
        SCOPED_TRACE(line);
        const LineShape shape(texts.join({line}));
        const LineShape longer(texts.join({line, std::string(130, ' ')}));
        EXPECT_EQ(shape.code(), longer.code());
        EXPECT_EQ(shape.splits(), longer.splits());
        EXPECT_EQ(shape.marked(), longer.marked());
        for (const auto& [flag, character] : {std::pair(Colon, ':'), {Equals, '='}, {Dot, '.'}})
          EXPECT_TRUE(shape.has(flag) || shape.code().find(character) == std::string_view::npos);
      }
    }
  }
}

// Empty items count nothing, wherever in a block they are.
TEST(DataItems, AreCountedInListsOfEveryLength) {
  TextStore texts;
  for (size_t items = 1; items < 100; ++items) {
    std::string list = "1";
    for (size_t i = 1; i < items; ++i)
      list += i % 3 == 0 ? ",1" : ",12";
    EXPECT_EQ(countItems(texts.join({list})), items) << list;
    for (size_t at = list.find(','); at != std::string::npos; at = list.find(',', at + 1))
      for (const char* gap : {",", ", "})
        EXPECT_EQ(countItems(texts.join({list.substr(0, at), gap, list.substr(at)})), items) << at << " in " << list;
  }
}

// The address sanitizer notices when the padding is missing.
TEST(TextStore, HasReadablePaddingAfterEachText) {
  for (size_t size : {0u, 1u, 64u, 65536u, 100000u}) {
    TextStore texts;
    const std::string text(size, 'x');
    for (std::string_view kept : {texts.join({text}), texts.own(std::string(text))})
      for (size_t i = 0; i < TextStore::padding; ++i)
        EXPECT_EQ(static_cast<volatile const char*>(kept.data())[size + i], kept.data()[size + i]);
  }
}

}  // namespace
}  // namespace kiln::test
