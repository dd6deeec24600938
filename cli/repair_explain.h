// How the commands show a repair trace: under a value with --explain, and
// as "changed" and "steps" in JSON. Rules and classes:
// docs/repair-trace.md.

#ifndef PELINOR_CLI_REPAIR_EXPLAIN_H_
#define PELINOR_CLI_REPAIR_EXPLAIN_H_

#include <nlohmann/json.hpp>

#include "pelinor/repair_trace.h"

namespace pelinor::cli {

// StepsJson()
//
// The steps as an array of {rule, class, position, sentence, before,
// after}.
nlohmann::json StepsJson(const cRepairTrace& trace);

// PrintSteps()
//
// One line per step, indented under the value: "  <class>  <rule>:
// <sentence>"; "  no change" when there is none.
void PrintSteps(const cRepairTrace& trace);

}  // namespace pelinor::cli

#endif  // PELINOR_CLI_REPAIR_EXPLAIN_H_
