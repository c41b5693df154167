#include "lsp/inlay_hints.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

#include "base/format.h"
#include "base/text.h"
#include "lsp/line_code.h"

namespace kiln {
namespace {

constexpr int kindParameter = 2;

class HintFinder {
 public:
  HintFinder(const Target& target, std::string_view part) : target_(target), analysis_(target.analysis), part_(part) {
    for (const Macro& macro : analysis_.program().notes.macros.all())
      macros_.emplace(macro.head.data(), &macro);
  }

  Json run() {
    if (analysis_.placements() != nullptr) addCode();
    for (const SourceNotes::Call& call : analysis_.program().notes.calls)
      addParameters(call);
    return std::move(hints_);
  }

 private:
  uint32_t lineOf(const OriginatedStatement& statement) const {
    return target_.index.lineOf(static_cast<size_t>(statement.origin.data() - target_.source.text.data()));
  }

  void addCode() {
    const std::vector<OriginatedStatement> statements = statementsFrom(analysis_, part_);
    for (size_t begin = 0, end = 0; begin < statements.size(); begin = end) {
      const uint32_t line = lineOf(statements[begin]);
      while (end < statements.size() && lineOf(statements[end]) == line)
        ++end;
      addCodeOf(line, std::span(statements).subspan(begin, end - begin));
    }
  }

  // "2000: A9 05  2"; of a long line the first bytes.
  void addCodeOf(uint32_t line, std::span<const OriginatedStatement> statements) {
    std::vector<uint8_t> bytes;
    uint32_t address = 0;
    CycleSum cycles(analysis_);
    for (const auto& [origin, statement] : statements) {
      const std::span<const uint8_t> made = bytesOf(analysis_, statement->index);
      cycles.add(statement->index);
      if (bytes.empty()) address = addressOf(analysis_, statement->index);
      const std::span<const uint8_t> shown = made.first(std::min(made.size(), mostBytesShown + 1 - bytes.size()));
      bytes.insert(bytes.end(), shown.begin(), shown.end());
    }
    if (bytes.empty()) return;
    std::string text;
    appendHex(text, address, 4);
    text += ": " + bytesText(bytes);
    if (const std::string time = cycles.text(); !time.empty()) text += "  " + time;
    const size_t end = target_.index.startOf(line) + target_.index.lineAt(line).size();
    hints_.push_back({{"position", toJson(target_.index.positionOf(end))}, {"label", text}, {"paddingLeft", true}});
  }

  void addParameters(const SourceNotes::Call& call) {
    const char* const place = call.line.data();
    const std::less<> isBefore;
    if (isBefore(place, part_.data()) || !isBefore(place, part_.data() + part_.size())) return;
    const Macro& macro = *macros_.at(call.macroHead.data());
    PositionWalk positions(target_.index);
    Fields fields(call.arguments, ',');
    std::string_view argument;
    for (size_t i = 0; i < macro.parameters.size() && fields.next(argument); ++i) {
      argument = trim(argument);
      if (argument.empty() || argument == macro.parameters[i]) continue;
      hints_.push_back(
          {{"position", toJson(positions.at(static_cast<size_t>(argument.data() - target_.source.text.data())))},
           {"label", concat({macro.parameters[i], ":"})},
           {"kind", kindParameter},
           {"paddingRight", true}});
    }
  }

  const Target& target_;
  const Analysis& analysis_;
  const std::string_view part_;
  std::unordered_map<const char*, const Macro*> macros_;  // by their heads
  Json hints_ = Json::array();
};

}  // namespace

Answer findInlayHints(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  if (!session.showsInlayHints) return Json(Json::array());
  return HintFinder(*target, target->linesOf(rangeFrom(memberOf(params, {"range"})))).run();
}

}  // namespace kiln
