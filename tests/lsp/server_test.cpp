// The protocol itself: what a client may send, in any order.
#include <gtest/gtest.h>

#include <random>

#include "base/paths.h"
#include "lsp/message_stream.h"
#include "lsp/text_index.h"
#include "lsp/uri.h"
#include "support/editor.h"

namespace kiln::test {
namespace {

using Files = std::map<std::string, std::string>;

// A server, and the messages that it sends for texts that arrive together.
struct RawClient {
  MemoryHost disk;
  Server server{disk, "kiln-lsp"};

  std::vector<Json> send(const std::vector<std::string>& texts) {
    for (const std::string& text : texts)
      server.receive(text);
    while (server.handleNext()) {
    }
    server.settle();
    std::vector<Json> messages;
    for (const std::string& text : server.takeOutput())
      messages.push_back(Json::parse(text));
    return messages;
  }
  // The number of the error that answers a text; 0 for a result.
  int errorFor(const std::string& text) {
    const std::vector<Json> messages = send({text});
    if (messages.size() != 1) return -1;
    return messages[0].contains("error") ? messages[0]["error"]["code"].get<int>() : 0;
  }
};

const std::string initialize = R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{}})";
const std::string shutDown = R"({"jsonrpc":"2.0","id":2,"method":"shutdown"})";
const std::string leave = R"({"jsonrpc":"2.0","method":"exit"})";
const std::string hover = R"({"jsonrpc":"2.0","id":"a","method":"textDocument/definition","params":)";

TEST(Server, AnswersWithTheErrorsOfTheProtocol) {
  RawClient client;
  EXPECT_EQ(client.errorFor(shutDown), -32002);
  EXPECT_EQ(client.errorFor(initialize), 0);
  const std::pair<std::string, int> rows[] = {
      {"", -32700},
      {"{\"id\":1", -32700},
      {"{\"id\":1,\"method\":\"a\xFF\"}", -32700},
      {R"({"id":1,"method":"\ud800"})", -32700},
      {std::string(100000, '['), -32700},
      {"[]", -32600},
      {"5", -32600},
      {R"({"id":1,"method":5})", -32600},
      {R"({"id":1,"method":"textDocument/unknown"})", -32601},
      {initialize, -32600},
      {hover + "null}", 0},
      {hover + "[1,2]}", 0},
      {hover + R"({"textDocument":{"uri":"http://a/b"},"position":{"line":0,"character":0}}})", 0},
      {hover + R"({"textDocument":{"uri":5},"position":"here"}})", 0},
      {hover + R"({"textDocument":{"uri":"file:///a"},"position":{"line":-1,"character":1e99}}})", 0},
      {shutDown, 0},
      {hover + "null}", -32600},
  };
  for (const auto& [text, code] : rows)
    EXPECT_EQ(client.errorFor(text), code) << text.substr(0, 80);
}

TEST(Server, EndsWithZeroOnlyAfterAShutdown) {
  RawClient orderly;
  orderly.send({initialize, shutDown, leave});
  EXPECT_TRUE(orderly.server.isOver());
  EXPECT_EQ(orderly.server.exitStatus(), 0);
  RawClient sudden;
  sudden.send({initialize, leave});
  EXPECT_TRUE(sudden.server.isOver());
  EXPECT_EQ(sudden.server.exitStatus(), 1);
}

TEST(Server, IgnoresUnknownNotificationsAndAnswers) {
  RawClient client;
  client.send({initialize});
  EXPECT_TRUE(client.send({R"({"jsonrpc":"2.0","method":"$/unknown"})"}).empty());
  EXPECT_TRUE(client.send({R"({"jsonrpc":"2.0","id":7,"result":null})"}).empty());
}

TEST(Server, AnswersARequestThatIsCancelledBeforeItsTurn) {
  RawClient client;
  client.send({initialize});
  const std::vector<Json> messages =
      client.send({hover + "null}", R"({"jsonrpc":"2.0","method":"$/cancelRequest","params":{"id":"a"}})"});
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0]["error"]["code"], -32800);
}

TEST(Server, PublishesFindingsAsTheyComeAndGo) {
  using Lines = std::vector<std::string>;
  Editor editor(Files{{"lib.inc", "LDY #256\n"}});
  editor.open("main.asm", " .org $2000\n LDZ #1\n .include \"lib.inc\"\n");
  EXPECT_EQ(editor.diagnosticsOf("main.asm"), Lines{"2:2 vanished"});
  EXPECT_EQ(editor.diagnosticsOf("lib.inc"), Lines{"1:6 cut-value"});
  editor.edit("main.asm", {{1, 3}, {1, 4}}, "X");
  EXPECT_EQ(editor.diagnosticsOf("main.asm"), Lines());
  editor.open("lib.inc", "LDY #255\n");
  EXPECT_EQ(editor.diagnosticsOf("lib.inc"), Lines());
  editor.close("lib.inc");
  EXPECT_EQ(editor.diagnosticsOf("lib.inc"), Lines{"1:6 cut-value"});
  editor.close("main.asm");
  EXPECT_EQ(editor.diagnosticsOf("lib.inc"), Lines());
  EXPECT_EQ(editor.takeMessages().size(), 6U);  // each list that has changed, once
}

TEST(Server, TakesCommandLinesFromAProjectFile) {
  using Lines = std::vector<std::string>;
  const std::string part = "LDA #SPEED\n";
  Editor editor(Files{{".kiln", "# two programs\n\n-D SPEED=5 main.asm\n-D SPEED=300 \"main.asm\"\n"},
                      {"main.asm", " .org $2000\n .include \"parts/part.inc\"\n"},
                      {"parts/part.inc", part}});
  editor.open("parts/part.inc", part);
  EXPECT_EQ(editor.diagnosticsOf("parts/part.inc"), Lines{"1:6 cut-value"});
  editor.open(".kiln", "-D SPEED=5 main.asm\n-o main.asm\n--map=m.txt main.asm\n none.asm\n");
  EXPECT_EQ(editor.diagnosticsOf("parts/part.inc"), Lines());
  EXPECT_EQ(editor.diagnosticsOf(".kiln"), (Lines{"2:1 ", "3:1 ", "4:1 "}));
}

TEST(Server, SaysWhatIsWrongInAProjectFileAsTheCheckDoes) {
  Editor editor;
  editor.open(".kiln", "-h\n-Q main.asm\n-f prg\n");
  std::vector<std::string> messages;
  for (const Json& message : editor.takeMessages()) {
    if (!message.contains("params")) continue;
    for (const Json& diagnostic : message["params"]["diagnostics"])
      messages.push_back(diagnostic["message"].get<std::string>());
  }
  EXPECT_EQ(messages,
            (std::vector<std::string>{"this option makes no program", "unknown option '-Q'", "no input files"}));
}

TEST(Server, ShowsAnIncludeInTheProgramsThatIncludeIt) {
  using Lines = std::vector<std::string>;
  Editor editor(Files{{"a.asm", " .org $2000\n .include \"part.inc\"\nlimit = 300\n"},
                      {"b.asm", " .org $2000\n .include \"part.inc\"\nlimit = 30\n"}});
  editor.open("part.inc", "LDA #limit\n");
  EXPECT_EQ(editor.diagnosticsOf("part.inc"), Lines{"1:6 cut-value"});
}

TEST(MessageStream, FindsMessagesInAnyPieces) {
  const std::string bytes = framed("{}") + "content-LENGTH:  3\r\nContent-Type: x\r\n\r\nabc" + framed("");
  for (size_t size = 1; size <= bytes.size(); ++size) {
    MessageStream stream;
    std::vector<std::string> messages;
    for (size_t at = 0; at < bytes.size(); at += size) {
      stream.add(std::string_view(bytes).substr(at, size));
      while (const std::optional<std::string> message = stream.next())
        messages.push_back(*message);
    }
    EXPECT_EQ(messages, (std::vector<std::string>{"{}", "abc", ""})) << size;
  }
}

TEST(MessageStream, SkipsHeadersWithoutALength) {
  for (const std::string header : {"Content-Length: x\r\n\r\n", "Content-Length: 99999999999999\r\n\r\n",
                                   "Type: a\r\n\r\n", "Content-Length:\r\n\r\n", "\r\n\r\n"}) {
    MessageStream stream;
    stream.add(header + framed("{}"));
    EXPECT_EQ(stream.next(), "") << header;
    EXPECT_EQ(stream.next(), "{}") << header;
  }
}

TEST(TextIndex, CountsAsEditorsDo) {
  const std::string text = "a\xC3\xA4\xF0\x9F\x98\x80z\r\n\xFF\xE2\x82\rlast";
  struct Row {
    size_t offset;
    Position utf16, utf8;
  };
  const Row rows[] = {
      {0, {0, 0}, {0, 0}},  {1, {0, 1}, {0, 1}},   // before the two-byte character
      {3, {0, 2}, {0, 3}},  {7, {0, 4}, {0, 7}},   // after the four-byte one, which is two units
      {10, {1, 0}, {1, 0}}, {11, {1, 1}, {1, 1}},  // a byte that is no character
      {14, {2, 0}, {2, 0}}, {18, {2, 4}, {2, 4}},
  };
  for (const auto& [offset, utf16, utf8] : rows) {
    for (const auto& [encoding, position] : {std::pair(Encoding::Utf16, utf16), std::pair(Encoding::Utf8, utf8)}) {
      const TextIndex index(text, encoding);
      EXPECT_EQ(toJson(index.positionOf(offset)), toJson(position)) << offset;
      EXPECT_EQ(index.offsetOf(position), offset);
    }
  }
  const TextIndex index(text, Encoding::Utf16);
  EXPECT_EQ(index.offsetOf({0, 3}), 3U);  // within the pair
  EXPECT_EQ(index.offsetOf({0, 99}), 8U);
  EXPECT_EQ(index.offsetOf({9, 0}), text.size());
  EXPECT_EQ(index.lineAt(0), "a\xC3\xA4\xF0\x9F\x98\x80z");
}

// A list of changes keeps what it knows of the lines from one change to the next.
TEST(OpenDocuments, ChangeByAListAsOneByOne) {
  const std::string pieces[] = {"", "a", "\r", "\n", "\r\n", "\u00E4\n", "b\rc"};
  std::mt19937 random(7);
  const auto below = [&random](uint32_t count) { return static_cast<uint32_t>(random() % count); };
  for (int round = 0; round < 300; ++round) {
    Documents atOnce;
    atOnce.open({"file:///a", "/a", nullptr, "one\rtwo\r\nthree\n"});
    Documents oneByOne = atOnce;
    Json changes = Json::array();
    for (int i = 0; i < 8; ++i) {
      const Position start = {below(6), below(4)};
      const Position end = {start.line + below(2), below(4)};
      changes.push_back({{"range", toJson(Range{start, end})}, {"text", pieces[below(std::size(pieces))]}});
      oneByOne.change("/a", nullptr, Json::array({changes.back()}), Encoding::Utf16);
    }
    atOnce.change("/a", nullptr, changes, Encoding::Utf16);
    ASSERT_EQ(atOnce.find("/a")->text, oneByOne.find("/a")->text) << changes.dump();
  }
}

TEST(Uri, IsAPath) {
  EXPECT_EQ(pathOfUri("file:///a%20b/%C3%A4.asm"), "/a b/\xC3\xA4.asm");
  EXPECT_EQ(pathOfUri("FILE://host/a/./b/../c"), "/a/c");
  EXPECT_EQ(pathOfUri("untitled:1"), std::nullopt);
  EXPECT_EQ(uriOfPath("/a b/\xC3\xA4#.asm"), "file:///a%20b/%C3%A4%23.asm");
  EXPECT_EQ(plainPath("/../a/../../b//c/"), "/b/c");
  EXPECT_EQ(plainPath("../a/../../b"), "../../b");
}

}  // namespace
}  // namespace kiln::test
