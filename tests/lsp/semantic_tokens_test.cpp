// The meaning of each word.
#include <gtest/gtest.h>

#include "lsp/capabilities.h"
#include "support/editor.h"

namespace kiln::test {
namespace {

using Texts = std::vector<std::string>;

// "TEXT TYPE", and the modifiers, by the names in the legend that the server announces.
Texts tokensIn(Editor& editor, const std::string& text, const std::string& method, Json params) {
  params["textDocument"] = {{"uri", Editor::uriOf("main.asm")}};
  const Json legend = capabilities(Encoding::Utf16)["semanticTokensProvider"]["legend"];
  const std::vector<uint32_t> data = editor.request("textDocument/semanticTokens/" + method, params)["data"];
  const TextIndex index(text, Encoding::Utf16);
  Position at;
  Texts tokens;
  for (size_t i = 0; i + 5 <= data.size(); i += 5) {
    at = {at.line + data[i], (data[i] == 0 ? at.character : 0) + data[i + 1]};
    const size_t begin = index.offsetOf(at);
    const size_t end = index.offsetOf({at.line, at.character + data[i + 2]});
    std::string token = text.substr(begin, end - begin) + " " + legend["tokenTypes"][data[i + 3]].get<std::string>();
    for (size_t bit = 0; bit < legend["tokenModifiers"].size(); ++bit) {
      if ((data[i + 4] >> bit & 1) != 0) token += " " + legend["tokenModifiers"][bit].get<std::string>();
    }
    tokens.push_back(token);
  }
  return tokens;
}

Texts tokensOf(const std::string& text) {
  const std::map<std::string, std::string> files = {{"lib.inc", "; nothing\n"}};
  Editor editor(files);
  editor.open("main.asm", text);
  return tokensIn(editor, text, "full", Json::object());
}

TEST(SemanticTokens, NameEverythingInStatements) {
  EXPECT_EQ(tokensOf("start: LDA #<start+$10 ; go\n"),
            (Texts{"start function definition", "LDA keyword", "start function", "$10 number", "; go comment"}));
  EXPECT_EQ(tokensOf("x = 5+0FFh\nmain:\n.l: STA .l,X : inc COLBK\n LDA (SAVMSC),Y\n"),
            (Texts{"x variable definition", "5 number", "0FFh number", "main function definition",
                   ".l function definition local", "STA keyword", ".l function local", "inc keyword",
                   "COLBK variable defaultLibrary", "LDA keyword", "SAVMSC variable zeroPage defaultLibrary"}));
  EXPECT_EQ(
      tokensOf(" .ORG $2000\n .byte 1,%10,nowhere\n .string \"a;b\"\n .bank one\n LDA #__bank_one\n"),
      (Texts{".ORG decorator", "$2000 number", ".byte decorator", "1 number", "%10 number", ".string decorator",
             "\"a;b\" string", ".bank decorator", "one namespace definition", "LDA keyword", "__bank_one namespace"}));
}

TEST(SemanticTokens, MarkWhatVanishes) {
  EXPECT_EQ(tokensOf("start: LDZ #1 ; no\n .align 5\nlabel\n NOP : nop #\n"),
            (Texts{"start function definition", "LDZ #1 comment deprecated", "; no comment",
                   ".align 5 comment deprecated", "label comment deprecated", "NOP keyword", "nop keyword"}));
}

TEST(SemanticTokens, NameMacrosAndIncludes) {
  EXPECT_EQ(tokensOf(" .include \"lib.inc\"\n.macro SET number ; m\n LDA #number+5\n what 6\n\nhere: SET $10\n"),
            (Texts{".include decorator", "lib.inc string", ".macro decorator", "SET macro definition",
                   "number parameter definition", "; m comment", "LDA keyword", "number parameter", "5 number",
                   "here function definition", "SET macro", "$10 number"}));
}

TEST(SemanticTokens, NameLinesThatAreRewritten) {
  EXPECT_EQ(tokensOf(" .org $2000\n BEQ far+1 ; far\n .space 200\nfar: RTS\n"),
            (Texts{".org decorator", "$2000 number", "BEQ keyword", "far function", "1 number", "; far comment",
                   ".space decorator", "200 number", "far function definition", "RTS keyword"}));
}

TEST(SemanticTokens, CountAsTheEditorDoes) {
  EXPECT_EQ(
      tokensOf("; \xF0\x9F\x98\x80\xC3\xA9\n .string \"\xF0\x9F\x98\x80\" ; x\n"),
      (Texts{"; \xF0\x9F\x98\x80\xC3\xA9 comment", ".string decorator", "\"\xF0\x9F\x98\x80\" string", "; x comment"}));
  // A token ends with its line, whatever ends that.
  EXPECT_EQ(tokensOf(" RTS\r\n NOP ; a\rb\n"), (Texts{"RTS comment deprecated", "NOP keyword", "; a comment"}));
}

TEST(SemanticTokens, CanBeLimitedToARange) {
  const std::string text = " NOP\n\n LDA #1\n TAX\n";
  Editor editor;
  editor.open("main.asm", text);
  const Json range = {{"start", {{"line", 1}, {"character", 0}}}, {"end", {{"line", 2}, {"character", 3}}}};
  EXPECT_EQ(tokensIn(editor, text, "range", {{"range", range}}), (Texts{"LDA keyword", "1 number"}));
}

}  // namespace
}  // namespace kiln::test
