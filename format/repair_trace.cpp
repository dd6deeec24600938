// The repair trace and its rule table. Rules: docs/repair-trace.md.

#include "pelinor/repair_trace.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "pelinor/log.h"
#include "pelinor/settings_snapshot.h"

namespace pelinor {
namespace {

struct Rule {
  std::string_view code;
  RiskClass risk;
};

// Every rule the formatter and the pattern engine record, by code.
constexpr Rule kRules[] = {
    {"bias-digit", RiskClass::kRepair},
    {"bias-letter", RiskClass::kRepair},
    {"case-changed", RiskClass::kCosmetic},
    {"char-dropped", RiskClass::kGuess},
    {"country-removed", RiskClass::kCosmetic},
    {"currency-skipped", RiskClass::kCosmetic},
    {"date-layout", RiskClass::kCosmetic},
    {"day-month-order", RiskClass::kGuess},
    {"decimal-comma", RiskClass::kCosmetic},
    {"implied-decimals", RiskClass::kGuess},
    {"leading-mark-dropped", RiskClass::kGuess},
    {"month-name", RiskClass::kCosmetic},
    {"month-repaired", RiskClass::kRepair},
    {"other-language", RiskClass::kRepair},
    {"pattern-variation", RiskClass::kRepair},
    {"point-moved", RiskClass::kGuess},
    {"postcode-shape", RiskClass::kCosmetic},
    {"reading-stopped", RiskClass::kGuess},
    {"separator-dropped", RiskClass::kCosmetic},
    {"sign-moved", RiskClass::kCosmetic},
    {"spaces-removed", RiskClass::kCosmetic},
    {"surrounding-dropped", RiskClass::kGuess},
    {"two-digit-year", RiskClass::kGuess},
    {"whole-units", RiskClass::kGuess},
};
// Looked up by binary search.
static_assert(std::is_sorted(std::begin(kRules), std::end(kRules),
                             [](const Rule& a, const Rule& b) {
                               return a.code < b.code;
                             }));

}  // namespace

std::string_view RiskClassName(RiskClass risk) {
  switch (risk) {
    case RiskClass::kCosmetic:
      return "cosmetic";
    case RiskClass::kRepair:
      return "repair";
    case RiskClass::kGuess:
      return "guess";
    default:
      return "";
  }
}

RiskClass RuleRisk(std::string_view code) {
  const auto it = std::lower_bound(
      std::begin(kRules), std::end(kRules), code,
      [](const Rule& r, std::string_view c) { return r.code < c; });
  return it != std::end(kRules) && it->code == code ? it->risk
                                                    : RiskClass::kGuess;
}

void cRepairTrace::Add(std::string_view code, std::string sentence,
                       int32_t position, std::string before,
                       std::string after) {
  AddWithRisk(code, RuleRisk(code), std::move(sentence), position,
              std::move(before), std::move(after));
}

void cRepairTrace::AddWithRisk(std::string_view code, RiskClass risk,
                               std::string sentence, int32_t position,
                               std::string before, std::string after) {
  // Most values take a step or two; room for a few spares the moves of
  // growing one by one.
  if (steps_.empty()) steps_.reserve(4);
  cRepairStep& step = steps_.emplace_back();
  step.Rule = code;
  step.Sentence = std::move(sentence);
  step.Position = position;
  step.Before = std::move(before);
  step.After = std::move(after);
  step.Risk = risk;
}

void cRepairTrace::Reverse(size_t from) {
  if (from < steps_.size()) {
    std::reverse(steps_.begin() + static_cast<std::ptrdiff_t>(from),
                 steps_.end());
  }
}

RiskClass cRepairTrace::Highest(size_t from) const {
  RiskClass highest = RiskClass::kNone;
  for (size_t i = from; i < steps_.size(); ++i) {
    highest = std::max(highest, steps_[i].Risk);
  }
  return highest;
}

std::string cRepairTrace::Sentences(size_t from) const {
  std::string out;
  for (size_t i = from; i < steps_.size(); ++i) {
    if (!out.empty()) out += "; ";
    out += steps_[i].Sentence;
  }
  return out;
}

namespace {
thread_local int quiet_depth = 0;
}  // namespace

cQuietFormatLog::cQuietFormatLog() { ++quiet_depth; }
cQuietFormatLog::~cQuietFormatLog() { --quiet_depth; }

bool FormatLogWanted() {
  if (quiet_depth != 0) return false;
  if (const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current()) {
    return snapshot->FormatLogOn();
  }
  // FormatLogPath() without building a string: this runs on every value.
  const char* path = std::getenv(kFormatLogVariable);
  return path != nullptr && *path != '\0';
}

void LogRepairSteps(const cRepairTrace& trace, size_t from) {
  if (!FormatLogWanted()) return;
  const auto& steps = trace.Steps();
  for (size_t i = from; i < steps.size(); ++i) {
    const cRepairStep& s = steps[i];
    LogFormatLine("Repair:" + s.Rule + ":" +
                  std::string(RiskClassName(s.Risk)) + ":" +
                  std::to_string(s.Position) + ":" + s.Sentence);
  }
}

}  // namespace pelinor
