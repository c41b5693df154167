// Names that nothing defines, and what their writers may have meant.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/text_store.h"
#include "inspect/findings.h"
#include "inspect/name_definitions.h"
#include "inspect/near_names.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class UndefinedNames {
 public:
  UndefinedNames(const Program& program, const NameDefinitions& definitions, Findings& findings);

  // A use of a name that no symbol has, in no letter case. `name` has the scope that it was looked up with.
  void addUse(const Statement& statement, std::string_view name);
  // A statement that vanishes, or that is an assignment by mistake: what it defines is missing because of that.
  void addVanished(const Statement& statement);
  // Reports each name once, after the last statement.
  void report();

 private:
  // The first use of a name.
  struct Use {
    std::string_view name;     // in texts_
    std::string_view written;  // in the source
    std::string_view scope;
    bool isUnscoped;  // with a leading dot, in a list or an assignment
  };

  bool isExplained(const Use& use) const;
  bool isLostParameter(const Use& use) const;
  void collectElsewhere();
  void report(const Use& use);
  const Symbol* addHints(const Use& use, Findings::Report& report);
  void offer(const Use& use, std::string_view symbol);

  const Program& program_;
  const NameDefinitions& definitions_;
  Findings& findings_;
  TextStore texts_;
  SymbolTable seen_;  // the names of the uses; faster than a set, as there may be a million
  std::vector<Use> uses_;
  std::unordered_set<std::string_view> vanished_;    // words that a vanished statement may have been meant to define
  std::unordered_set<std::string_view> lost_;        // labels and names in lines that long branches have replaced
  std::unordered_set<std::string_view> parameters_;  // of all macros
  NearNames near_;
  size_t comparisonsLeft_ = 4'000'000;
};

}  // namespace kiln
