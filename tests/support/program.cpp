#include "support/program.h"

#include <gtest/gtest.h>

#include "base/format.h"
#include "base/text.h"
#include "driver/run.h"
#include "output/image.h"

namespace kiln::test {

std::string bytes(const std::string& hex) {
  Image spelled;
  appendHexText(spelled, hex);
  return joined(spelled.parts());
}

std::string hex(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    appendHex(text, static_cast<uint8_t>(byte), 2);
    text += ' ';
  }
  return text;
}

std::string zeros(size_t count) { return std::string(2 * count, '0'); }

std::string xex(const Contents& segments, unsigned runAddress) {
  const auto word = [](size_t value) { return std::string{static_cast<char>(value), static_cast<char>(value >> 8)}; };
  std::string file = "\xFF\xFF";
  for (const auto& [address, hex] : segments) {
    const std::string content = bytes(hex);
    if (!content.empty()) file += word(address) + word(address + content.size() - 1) + content;
  }
  return file + word(0x02E0) + word(0x02E1) + word(runAddress);
}

std::string range(const std::string& name, uint32_t low, uint32_t high) {
  return low == 0 && high == 0 ? "" : concat({" ", name, " ", dollarHex(low, 1), "-", dollarHex(high, 1)});
}

std::string say(const std::string& text) { return "kiln-as: " + text + "\n"; }

std::vector<std::string> undefined(const std::vector<std::string>& names) {
  std::vector<std::string> warnings;
  for (const std::string& name : names)
    warnings.push_back("undefined symbol '" + name + "', using 0");
  return warnings;
}

std::vector<std::string> texts(const MessageList& messages) {
  std::vector<std::string> list;
  for (size_t i = 0; i < messages.size(); ++i)
    list.emplace_back(messages[i]);
  return list;
}

std::vector<std::string> words(std::string_view line) {
  std::vector<std::string> result;
  Fields fields(line, ' ');
  for (std::string_view word; fields.next(word);)
    result.emplace_back(word);
  return result;
}

int runLine(MemoryHost& host, const std::string& line) { return run(host, words("kiln-as " + line)); }

void expectRun(const Run& run) {
  SCOPED_TRACE("source:\n" + run.source.substr(0, 2000));
  MemoryHost host;
  host.files["main.asm"] = run.source;
  EXPECT_EQ(runLine(host, run.line), run.status);
  EXPECT_EQ(host.standardError, run.standardError);
  EXPECT_EQ(host.standardOutput, "");
  EXPECT_EQ(host.written, run.written);
}

namespace {

std::string messages(const std::string& kind, const std::vector<std::string>& texts) {
  std::string lines;
  for (const std::string& text : texts)
    lines += say(kind + ": " + text);
  return lines;
}

}  // namespace

void expectCode(const std::string& source, const Contents& segments, const std::vector<std::string>& warnings,
                const std::string& options) {
  size_t size = 0;
  for (const auto& [address, hex] : segments)
    size += bytes(hex).size();
  const std::string count = std::to_string(segments.size()) + (segments.size() == 1 ? " segment)" : " segments)");
  expectRun({.source = source,
             .line = options + (options.empty() ? "main.asm" : " main.asm"),
             .standardError = messages("warning", warnings) +
                              say("assembled 'main.asm' -> 'main.xex' (" + std::to_string(size) + " bytes, " + count),
             .written = {{"main.xex", xex(segments, segments.empty() ? 0x3400 : segments.front().first)}}});
}

void expectErrors(const std::string& source, const std::vector<std::string>& errors,
                  const std::vector<std::string>& warnings, const std::string& options) {
  expectRun({.source = source,
             .line = options + (options.empty() ? "main.asm" : " main.asm"),
             .status = 1,
             .standardError = messages("warning", warnings) + messages("error", errors)});
}

}  // namespace kiln::test
