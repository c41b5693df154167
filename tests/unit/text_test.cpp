// Paths, and the two rules of UTF-8.
#include <gtest/gtest.h>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/utf8.h"
#include "support/program.h"

namespace kiln {

TEST(Paths, AreTakenApartAtTheirSlashesAndTheLastDot) {
  // The path | normalised | its last component | its directory | its extension | its stem | "x/" below it.
  for (const std::string row :
       {"||||||x", "/|/||/||/|/x", "///|/||/||/|/x", "a//b/|a/b||a||a/b|a/b/x", "g.asm|g.asm|g.asm||asm|g|g.asm/x",
        "/g.asm|/g.asm|g.asm|/|asm|/g|/g.asm/x", "x//y///g.a.b|x/y/g.a.b|g.a.b|x/y|b|x/y/g.a|x/y/g.a.b/x",
        "x.y/g|x.y/g|g|x.y||x.y/g|x.y/g/x", "x/.pro|x/.pro|.pro|x||x/.pro|x/.pro/x", ".a.b|.a.b|.a.b||b|.a|.a.b/x",
        "a.|a.|a.|||a.|a./x", "a.b c|a.b c|a.b c|||a.b c|a.b c/x", "a.b\tc|a.b\tc|a.b\tc|||a.b\tc|a.b\tc/x",
        "a b.c|a b.c|a b.c||c|a b|a b.c/x", "\\\\a\\b.c|\\\\a\\b.c|\\\\a\\b.c||c|\\\\a\\b|\\\\a\\b.c/x"}) {
    const std::string path = row.substr(0, row.find('|'));
    EXPECT_EQ(row, concat({path, "|", normalisePath(path), "|", lastComponent(path), "|", directoryPart(path), "|",
                           pathExtension(path), "|", pathStem(path), "|", joinPaths(path, "x/")}));
  }
}

TEST(Utf8, HasALaxRuleAndAStrictOne) {
  std::string_view form;
  for (const std::string_view row :
       {"strict,,00,7F,C2 80,DF BF,C3 A0 C3 A0,E0 A0 80,E1 80 80,ED 9F BF,EE 80 80,EC BF BF,EF BF BF,F1 80 80 80",
        "strict,F0 90 80 80,F0 BF BF BF,F3 BF BF BF,F4 80 80 80,F4 8F BF BF",
        "lax,E0 80 80,E0 9F BF,ED A0 80,ED BF BF,F0 80 80 80,F0 8F BF BF,F4 90 80 80,F4 BF BF BF",
        "none,80,BF,C0 80,C1 BF,F5 80 80 80,FF,C2,C2 7F,DF C0,E1,E1 80,E1 7F 80,E1 80 7F,EF BF C0,C2 80 80",
        "none,E1 80 80 80,F1 80 80,F1 7F 80 80,F1 80 C0 80,F1 80 80 7F,F3 80 80 C0"}) {
    Fields forms(row.substr(row.find(',') + 1), ',');
    while (forms.next(form)) {
      // Each form stands at every distance from the start and the end of some ASCII, and before what is not the text's.
      for (size_t i = 0; i < 30; ++i) {
        const std::string text =
            std::string(i % 10, 'a') + test::bytes(std::string(form)) + std::string(i / 10 * 4, 'z');
        const std::string room = text + "\x80";
        EXPECT_EQ(isStrictUtf8({room.data(), text.size()}), row[0] == 's') << form;
        EXPECT_EQ(isUtf8({room.data(), text.size()}), row[0] != 'n') << form;
      }
    }
  }
  EXPECT_EQ(utf16Length(test::bytes("C3 A0 7F DF BF EF BF BF F0 90 80 80 80 F4 80 80 80")), 8U);
}

}  // namespace kiln
