// Showing repair traces. Rules: docs/repair-trace.md.

#include "cli/repair_explain.h"

#include <string>

#include "cli/cli_util.h"

namespace pelinor::cli {

nlohmann::json StepsJson(const cRepairTrace& trace) {
  nlohmann::json steps = nlohmann::json::array();
  for (const cRepairStep& s : trace.Steps()) {
    steps.push_back({{"rule", s.Rule},
                     {"class", std::string(RiskClassName(s.Risk))},
                     {"position", s.Position},
                     {"sentence", Json(s.Sentence)},
                     {"before", Json(s.Before)},
                     {"after", Json(s.After)}});
  }
  return steps;
}

void PrintSteps(const cRepairTrace& trace) {
  if (trace.Size() == 0) {
    PrintLine("  no change");
    return;
  }
  for (const cRepairStep& s : trace.Steps()) {
    std::string risk(RiskClassName(s.Risk));
    risk.resize(8, ' ');
    PrintLine("  " + risk + " " + s.Rule + ": " + s.Sentence);
  }
}

}  // namespace pelinor::cli
