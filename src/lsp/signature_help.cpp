#include "lsp/signature_help.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "base/text.h"
#include "source/line_text.h"

namespace kiln {
namespace {

const SourceNotes::Call* callIn(const Analysis& analysis, std::string_view line) {
  const std::vector<SourceNotes::Call>& calls = analysis.program().notes.calls;
  const auto call = std::find_if(calls.begin(), calls.end(),
                                 [line](const SourceNotes::Call& each) { return each.line.data() == line.data(); });
  return call == calls.end() ? nullptr : &*call;
}

const Macro* macroOf(const Analysis& analysis, const SourceNotes::Call& call) {
  const std::vector<Macro>& macros = analysis.program().notes.macros.all();
  const auto macro = std::find_if(macros.begin(), macros.end(),
                                  [&call](const Macro& each) { return each.head.data() == call.macroHead.data(); });
  return macro == macros.end() ? nullptr : &*macro;
}

// The arguments of the call up to the cursor, from the end of the macro's name on; null data when it is not there.
std::string_view argumentsBefore(const SourceNotes::Call& call, const char* place) {
  const std::string_view code = withoutComment(call.line);
  const std::less<> isBefore;
  if (isBefore(code.data() + code.size(), place)) return {};
  const size_t first = call.arguments.empty() ? code.size() : static_cast<size_t>(call.arguments.data() - code.data());
  const size_t nameEnd = trimRight(code.substr(0, first)).size();
  if (!isBefore(code.data() + nameEnd, place)) return {};
  return code.substr(nameEnd, static_cast<size_t>(place - code.data()) - nameEnd);
}

// Offsets in a label count UTF-16 units, whatever positions count.
uint32_t unitsIn(std::string_view label) {
  return TextIndex(label, Encoding::Utf16).positionOf(label.size()).character;
}

// "name first, second". The parameters are left out when the cursor is at an argument too many: without one that is
// active, the first would be.
Json signatureOf(const Macro& macro, size_t active) {
  std::string_view head = macro.head;
  std::string label(takeWord(head));
  Json parameters = Json::array();
  const size_t count = std::min(macro.parameters.size(), mostParameters);
  for (size_t i = 0; i < count; ++i) {
    label += i == 0 ? " " : ", ";
    const uint32_t begin = unitsIn(label);
    label += macro.parameters[i];
    parameters.push_back({{"label", {begin, unitsIn(label)}}});
  }
  Json signature = {{"label", std::move(label)}};
  if (active < count) signature["parameters"] = std::move(parameters);
  return signature;
}

}  // namespace

Answer helpWithSignature(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  const Position position = positionFrom(memberOf(params, {"position"}));
  const std::string_view line = target->index.lineAt(position.line);
  const SourceNotes::Call* const call = line.data() == nullptr ? nullptr : callIn(target->analysis, line);
  const Macro* const macro = call == nullptr ? nullptr : macroOf(target->analysis, *call);
  const std::string_view before =
      macro == nullptr ? std::string_view() : argumentsBefore(*call, target->placeOf(position));
  if (before.data() == nullptr) return Json();
  // Arguments are cut at every comma, whatever is around it.
  const auto active = static_cast<size_t>(std::count(before.begin(), before.end(), ','));
  Json help = {{"signatures", Json::array({signatureOf(*macro, active)})}, {"activeSignature", 0}};
  help["activeParameter"] = active;
  return help;
}

}  // namespace kiln
