// The repair trace: what the formatter and the pattern engine changed in
// an OCR text, or how they read it, step by step. Each step names a rule
// by a short stable code, explains it in a sentence, and carries the
// position it applies to, the text before and after it, and the rule's
// risk class. Rules and classes: docs/repair-trace.md.
//
// Routines take a trace as an optional last argument; with none they do
// no tracing work at all. A trace only records: results are the same with
// or without one.
//
// Thread safety: plain value; one thread at a time.

#ifndef PELINOR_REPAIR_TRACE_H_
#define PELINOR_REPAIR_TRACE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelinor {

// How much a person should care about a step, lowest first.
enum class RiskClass : int32_t {
  kNone = -1,     // no step at all (the highest class of an empty trace)
  kCosmetic = 0,  // spaces, separators, case, layout of the result
  kRepair = 1,    // a look-alike mapped where the value's shape needs it
  kGuess = 2,     // an interpretation a person should confirm
};

// RiskClassName()
//
// "cosmetic", "repair", "guess", or "" for kNone.
std::string_view RiskClassName(RiskClass risk);

// RuleRisk()
//
// The class of the rule `code` (the table in docs/repair-trace.md);
// kGuess for a code the table does not know.
RiskClass RuleRisk(std::string_view code);

// cRepairStep
//
// One step. `Position` is one-based in the text the routine was given, or
// 0 when the step concerns the value as a whole. `Before` and `After` are
// the part of the text the step changed, before and after it (equal when
// the step only interprets the text).
struct cRepairStep {
  std::string Rule;
  std::string Sentence;
  int32_t Position = 0;
  std::string Before;
  std::string After;
  RiskClass Risk = RiskClass::kCosmetic;
};

class cRepairTrace {
 public:
  cRepairTrace() = default;
  // A trace holding `steps`, as copied out of another.
  explicit cRepairTrace(std::vector<cRepairStep> steps)
      : steps_(std::move(steps)) {}

  // Add()
  //
  // Appends a step of rule `code`, its class taken from RuleRisk().
  void Add(std::string_view code, std::string sentence, int32_t position,
           std::string before, std::string after);

  // AddWithRisk()
  //
  // Appends a step whose class depends on the case (a look-alike next to
  // digits is a repair, one among letters a guess).
  void AddWithRisk(std::string_view code, RiskClass risk, std::string sentence,
                   int32_t position, std::string before, std::string after);

  // Steps()
  // Size()
  //
  // The steps in the order they were taken.
  const std::vector<cRepairStep>& Steps() const { return steps_; }
  size_t Size() const { return steps_.size(); }

  // TakeSteps()
  //
  // Steps() moved out; the trace is left empty.
  std::vector<cRepairStep> TakeSteps() { return std::move(steps_); }

  // Highest()
  //
  // The highest class among the steps from `from` on; kNone when there
  // are none.
  RiskClass Highest(size_t from = 0) const;

  // Sentences()
  //
  // The sentences of the steps from `from` on, joined by "; ".
  std::string Sentences(size_t from = 0) const;

  // Reverse()
  //
  // Turns the steps from `from` on round, for routines that read their
  // text from the right.
  void Reverse(size_t from);

  // Clear()
  void Clear() { steps_.clear(); }

 private:
  std::vector<cRepairStep> steps_;
};

// cQuietFormatLog
//
// While one exists on a thread, the formatter and the pattern engine write
// nothing to the format log from that thread: a caller that runs a routine
// a second time only to explain it keeps the log as the first run left
// it. Objects nest.
class cQuietFormatLog {
 public:
  cQuietFormatLog();
  ~cQuietFormatLog();
  cQuietFormatLog(const cQuietFormatLog&) = delete;
  cQuietFormatLog& operator=(const cQuietFormatLog&) = delete;
};

// FormatLogWanted()
//
// True when the format log is on (PELINORLOGFORMAT, or as the thread's
// ScopedSettingsSnapshot found it) and this thread is not inside a
// cQuietFormatLog.
bool FormatLogWanted();

// LogRepairSteps()
//
// Appends one format-log line per step from `from` on:
// "Repair:<code>:<class>:<position>:<sentence>". Nothing when the format
// log is off.
void LogRepairSteps(const cRepairTrace& trace, size_t from);

}  // namespace pelinor

#endif  // PELINOR_REPAIR_TRACE_H_
