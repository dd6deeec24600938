// The "queue" verbs: show queue files and the queues their filters build,
// and show or write queue status files and reject message files.
//
// Formats: see docs/formats/queue.md.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/date_text.h"
#include "pelinor/numeric.h"
#include "pelinor/queue.h"
#include "pelinor/queue_entry.h"
#include "pelinor/text.h"

namespace pelinor::cli {
namespace {

using EntryPtr = std::shared_ptr<cQueueEntry>;

// One property of cQueueEntry, for printing and for --set.
struct Property {
  const char* name;
  std::variant<std::string cQueueEntry::*, int32_t cQueueEntry::*,
               bool cQueueEntry::*, double cQueueEntry::*>
      member;
  bool stored;  // part of the status file's record
};

using E = cQueueEntry;
const Property kProperties[] = {
    {"OCRRequest", &E::OCRRequest, true},
    {"CaptureState", &E::CaptureState, true},
    {"Priority", &E::Priority, true},
    {"DepositType", &E::DepositType, true},
    {"Unpacked", &E::Unpacked, true},
    {"DocId", &E::DocId, true},
    {"ScannerProfile", &E::ScannerProfile, true},
    {"PelinorProfile", &E::PelinorProfile, true},
    {"OCRPerformed", &E::OCRPerformed, true},
    {"OCRConfidence", &E::OCRConfidence, true},
    {"OCRMinConfidence", &E::OCRMinConfidence, true},
    {"TimeScanned", &E::TimeScanned, true},
    {"TimeLastModified", &E::TimeLastModified, true},
    {"TemplateIdentified", &E::TemplateIdentified, true},
    {"PageCount", &E::PageCount, true},
    {"LookupScript", &E::LookupScript, true},
    {"ExportProcess", &E::ExportProcess, true},
    {"TemplateIdentifier", &E::TemplateIdentifier, true},
    {"TemplateType", &E::TemplateType, true},
    {"TemplateSubType", &E::TemplateSubType, true},
    {"TemplateIDX", &E::TemplateIDX, true},
    {"TemplateIDY", &E::TemplateIDY, true},
    {"TemplateIDWidth", &E::TemplateIDWidth, true},
    {"TemplateIDHeight", &E::TemplateIDHeight, true},
    {"TemplateIDPage", &E::TemplateIDPage, true},
    {"TemplateIDText", &E::TemplateIDText, true},
    {"ID2X", &E::ID2X, true},
    {"ID2Y", &E::ID2Y, true},
    {"ID2Width", &E::ID2Width, true},
    {"ID2Height", &E::ID2Height, true},
    {"ID2Page", &E::ID2Page, true},
    {"ID2Text", &E::ID2Text, true},
    {"ID2Identifier", &E::ID2Identifier, false},
    {"TemplateDisplayName", &E::TemplateDisplayName, true},
    {"TemplateIDFormat", &E::TemplateIDFormat, true},
    {"TemplateCountry", &E::TemplateCountry, true},
    {"FieldsOCRExtracted", &E::FieldsOCRExtracted, true},
    {"DataValid", &E::DataValid, true},
    {"ManualCheckNeeded", &E::ManualCheckNeeded, true},
    {"ManuallyAccepted", &E::ManuallyAccepted, true},
    {"Version", &E::Version, false},
    {"Reject", &E::Reject, true},
    {"PELINOR_State", &E::PELINOR_State, true},
    {"Slot", &E::Slot, false},
    {"dtTimeScanned", &E::dtTimeScanned, false},
    {"dtTimeLastModified", &E::dtTimeLastModified, false},
};

// A property's value as text (Windows-1252); dates as "yyyy-mm-dd hh:mm:ss".
std::string ValueText(const cQueueEntry& e, const Property& p) {
  return std::visit(
      [&e](auto member) -> std::string {
        const auto& v = e.*member;
        using V = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<V, std::string>) {
          return v;
        } else if constexpr (std::is_same_v<V, bool>) {
          return v ? "true" : "false";
        } else if constexpr (std::is_same_v<V, double>) {
          return FormatDateTime(v);
        } else {
          return NumberText(v);
        }
      },
      p.member);
}

nlohmann::json ValueJson(const cQueueEntry& e, const Property& p) {
  return std::visit(
      [&e](auto member) -> nlohmann::json {
        const auto& v = e.*member;
        using V = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<V, std::string>) {
          return Json(v);
        } else if constexpr (std::is_same_v<V, double>) {
          return FormatDateTime(v);
        } else {
          return v;
        }
      },
      p.member);
}

nlohmann::json EntryJson(const cQueueEntry& e) {
  nlohmann::json out = nlohmann::json::object();
  for (const Property& p : kProperties) out[p.name] = ValueJson(e, p);
  return out;
}

// Sets a stored property from its text; false with `error` set when the
// name or the value is not acceptable.
bool SetProperty(cQueueEntry& e, const std::string& name,
                 const std::string& value, std::string& error) {
  const Property* found = nullptr;
  for (const Property& p : kProperties) {
    if (EqualsIgnoreCase(p.name, name)) found = &p;
  }
  if (found == nullptr) {
    error = "unknown property \"" + name + "\"";
    return false;
  }
  if (!found->stored) {
    error = std::string(found->name) + " is not stored in a status file";
    return false;
  }
  return std::visit(
      [&](auto member) {
        auto& v = e.*member;
        using V = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<V, std::string>) {
          v = value;
          return true;
        } else if constexpr (std::is_same_v<V, bool>) {
          const std::string u = UCase(value);
          if (u == "TRUE" || u == "YES" || u == "1" || u == "#TRUE#") {
            v = true;
          } else if (u == "FALSE" || u == "NO" || u == "0" || u == "#FALSE#") {
            v = false;
          } else {
            error = std::string(found->name) + " takes true or false, not \"" +
                    value + "\"";
            return false;
          }
          return true;
        } else if constexpr (std::is_same_v<V, int32_t>) {
          if (!ToLong(value, v)) {
            error = std::string(found->name) +
                    " takes a 32-bit whole number, not \"" + value + "\"";
            return false;
          }
          return true;
        } else {
          return false;  // dates are not stored
        }
      },
      found->member);
}

// How far capture has got, in words.
const char* Progress(const cQueueEntry& e) {
  if (e.FieldsOCRExtracted) return "extracted";
  return e.TemplateIdentified ? "identified" : "not identified";
}

// Prints entries as a table, one line per entry, in queue order.
void PrintTable(const Collection<EntryPtr>& entries, int limit) {
  std::vector<std::vector<std::string>> rows = {
      {"#", "DocId", "State", "Progress", "Deposit", "Unpacked", "Rejected",
       "Priority", "Scanned", "Modified"}};
  int n = 0;
  for (const EntryPtr& e : entries) {
    if (limit >= 0 && n >= limit) break;
    rows.push_back({std::to_string(++n), e->DocId, NumberText(e->PELINOR_State),
                    Progress(*e), NumberText(e->DepositType),
                    e->Unpacked ? "yes" : "no", e->Reject ? "yes" : "no",
                    NumberText(e->Priority),
                    e->TimeScanned.empty() ? "-" : e->TimeScanned,
                    e->TimeLastModified.empty() ? "-" : e->TimeLastModified});
  }
  // One byte is one character in Windows-1252, so byte widths align.
  std::vector<size_t> width(rows[0].size(), 0);
  for (const auto& row : rows) {
    for (size_t i = 0; i < row.size(); ++i) {
      width[i] = std::max(width[i], row[i].size());
    }
  }
  for (const auto& row : rows) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      line += row[i];
      if (i + 1 < row.size()) line.append(width[i] - row[i].size() + 2, ' ');
    }
    PrintLine(line);
  }
}

nlohmann::json EntriesJson(const Collection<EntryPtr>& entries, int limit) {
  nlohmann::json out = nlohmann::json::array();
  for (const EntryPtr& e : entries) {
    if (limit >= 0 && static_cast<int>(out.size()) >= limit) break;
    out.push_back(EntryJson(*e));
  }
  return out;
}

// Reports a failed read or write of `file` with the library's message
// and the system's reason.
void FailOn(const std::string& file, const std::string& err) {
  FailFile(file, err);
}

// Reads a queue file, or reports why it cannot be read.
std::optional<cQueue> ReadQueue(const std::string& file) {
  cQueue q;
  std::string err;
  ClearFileError();
  if (!q.ReadSettings(file, err)) {
    FailOn(file, err);
    return std::nullopt;
  }
  WarnIfUtf8(file);
  return q;
}

// Prints entries one JSON object per line, up to `limit` (all when < 0).
void PrintEntryLines(const Collection<EntryPtr>& entries, int limit) {
  int n = 0;
  for (const EntryPtr& e : entries) {
    if (limit >= 0 && n++ >= limit) break;
    PrintJsonLine(EntryJson(*e));
  }
}

struct QueueOptions {
  std::string file;  // paths are handed on as given
  std::vector<std::string> files;
  std::vector<std::string> steps;
  std::vector<std::string> sets;
  std::string from;
  std::string time = "scanned";
  std::string doc_id;   // UTF-8
  std::string message;  // UTF-8
  int limit = -1;
  bool json = false;
  bool json_lines = false;
};

void RunShow(const QueueOptions& o) {
  const auto q = ReadQueue(o.file);
  if (!q) return;
  if (o.json_lines) {
    PrintEntryLines(q->QueueEntries, -1);
    return;
  }
  if (o.json) {
    PrintJson({{"version", Json(q->Version)},
               {"count", q->QueueEntries.Count()},
               {"entries", EntriesJson(q->QueueEntries, -1)}});
    return;
  }
  PrintLine("Version: " + q->Version);
  PrintLine("Entries: " + std::to_string(q->QueueEntries.Count()));
  if (q->QueueEntries.Count() > 0) PrintTable(q->QueueEntries, -1);
}

// A rejected-records mode: a number, or first / only / others.
std::optional<int32_t> ParseMode(const std::string& text) {
  const std::string u = UCase(text);
  if (u.empty() || u == "FIRST") return kRejectedFirst;
  if (u == "ONLY") return kRejectedOnly;
  if (u == "OTHERS") return kNotRejectedOnly;
  int32_t mode = 0;
  if (ToLong(text, mode)) return mode;
  return std::nullopt;
}

// Applies one --for step to `in`; nothing (after Fail()) for a bad step.
std::shared_ptr<cQueue> ApplyStep(const cQueue& in, const std::string& step,
                                  int32_t time_mode) {
  const size_t colon = step.find(':');
  const std::string name = LCase(step.substr(0, colon));
  const std::string arg =
      colon == std::string::npos ? "" : step.substr(colon + 1);
  std::shared_ptr<cQueue> out;
  if (name == "unpack" && arg.empty()) {
    in.GetDocumentsToUnpack(out);
  } else if (name == "capture" && arg.empty()) {
    in.GetDocumentsToCapture(out);
  } else if (name == "export" && arg.empty()) {
    in.FilterToExport(out);
  } else if (name == "least-processed" && arg.empty()) {
    in.PrioritiseOldestLeastProcessed(out, time_mode);
  } else if (name == "most-processed" && arg.empty()) {
    in.PrioritiseOldestMostProcessed(out, time_mode);
  } else if (name == "rejected" || name == "viewable" || name == "deferred") {
    const auto mode = ParseMode(arg);
    if (!mode) {
      Fail("bad mode \"" + FromUtf8(arg) + "\" in --for " + FromUtf8(step));
      return nullptr;
    }
    if (name == "rejected") in.PrioritiseRejectedRecords(*mode, out);
    if (name == "viewable")
      in.PrioritiseViewableDocuments(*mode, out, time_mode);
    if (name == "deferred") in.PrioritiseViewableDeferredDocuments(*mode, out);
  } else if (name == "state" || name == "states") {
    int32_t state = 0;
    if (!ToLong(arg, state)) {
      Fail("--for " + FromUtf8(step) + " needs a state number (state:N)");
      return nullptr;
    }
    in.PrioritisePELINORStates(state, out);
  } else {
    Fail("unknown selection \"" + FromUtf8(step) + "\" (see --help)");
    return nullptr;
  }
  return out;
}

void RunSelect(const QueueOptions& o) {
  const std::string time = LCase(o.time);
  if (time != "scanned" && time != "modified") {
    Fail("--time takes scanned or modified, not \"" + FromUtf8(o.time) + "\"");
    return;
  }
  const int32_t time_mode =
      time == "modified" ? kQueueTimeLastModified : kQueueTimeScanned;
  auto q = ReadQueue(o.file);
  if (!q) return;
  auto current = std::make_shared<cQueue>(std::move(*q));
  for (const std::string& step : o.steps) {
    current = ApplyStep(*current, step, time_mode);
    if (!current) return;
  }
  if (o.json_lines) {
    PrintEntryLines(current->QueueEntries, o.limit);
  } else if (o.json) {
    PrintJson(EntriesJson(current->QueueEntries, o.limit));
  } else if (current->QueueEntries.Count() == 0) {
    PrintLine("No entries.");
  } else {
    PrintTable(current->QueueEntries, o.limit);
  }
}

void RunFind(const QueueOptions& o) {
  const auto q = ReadQueue(o.file);
  if (!q) return;
  int32_t index = 0;
  EntryPtr entry;
  if (!q->Find(FromUtf8(o.doc_id), index, entry)) {
    Fail("no entry " + FromUtf8(o.doc_id) + " in " + PathText(o.file));
    return;
  }
  if (o.json) {
    PrintJson({{"position", index}, {"entry", EntryJson(*entry)}});
    return;
  }
  PrintLine("Position: " + std::to_string(index));
  for (const Property& p : kProperties) {
    PrintLine(std::string(p.name) + ": " + ValueText(*entry, p));
  }
}

void RunBuild(const QueueOptions& o) {
  cQueue q;
  for (const std::string& file : o.files) {
    auto entry = std::make_shared<cQueueEntry>();
    std::string err;
    if (!entry->ReadSettings(file, err)) {
      FailOn(file, err);
      return;
    }
    q.QueueEntries.Add(entry);
  }
  std::string err;
  if (!q.WriteSettings(o.file, err)) FailOn(o.file, err);
}

void RunEntryShow(const QueueOptions& o) {
  cQueueEntry e;
  std::string err;
  if (!e.ReadSettings(o.file, err)) {
    FailOn(o.file, err);
    return;
  }
  WarnIfUtf8(o.file);
  if (o.json) {
    PrintJson(EntryJson(e));
    return;
  }
  for (const Property& p : kProperties) {
    PrintLine(std::string(p.name) + ": " + ValueText(e, p));
  }
}

void RunEntryWrite(const QueueOptions& o) {
  cQueueEntry e;
  std::string err;
  if (!o.from.empty() && !e.ReadSettings(o.from, err)) {
    FailOn(o.from, err);
    return;
  }
  for (const std::string& set : o.sets) {
    const std::string text = FromUtf8(set);
    const size_t eq = text.find('=');
    if (eq == std::string::npos) {
      Fail("--set takes NAME=VALUE, not \"" + text + "\"");
      return;
    }
    if (!SetProperty(e, text.substr(0, eq), text.substr(eq + 1), err)) {
      Fail(err);
      return;
    }
  }
  // A failed record still answers true, with its message and no file.
  if (!e.WriteSettings(o.file, err) || !err.empty()) {
    FailOn(o.file, err);
  }
}

void RunRejectShow(const QueueOptions& o) {
  cQueueEntry e;
  std::string message;
  std::string err;
  if (!e.ReadRejectMessage(message, o.file, err)) {
    FailOn(o.file, err);
    return;
  }
  WarnIfUtf8(o.file);
  if (o.json) {
    PrintJson({{"version", Json(e.Version)}, {"message", Json(message)}});
  } else {
    PrintLine(message);
  }
}

void RunRejectWrite(const QueueOptions& o) {
  std::string err;
  if (!cQueueEntry().WriteRejectMessage(FromUtf8(o.message), o.file, err)) {
    FailOn(o.file, err);
  }
}

}  // namespace

void AddQueueCommand(CLI::App& app) {
  auto o = std::make_shared<QueueOptions>();
  CLI::App* queue = app.add_subcommand(
      "queue",
      "Show the work queue and the entries each worker should see; show and "
      "write queue status files and reject message files");
  queue->footer("Formats and ordering rules: docs/formats/queue.md.");
  queue->require_subcommand(1);

  CLI::App* show = queue->add_subcommand(
      "show", "Print a queue file's version and entries, in file order");
  show->add_option("FILE", o->file, "queue file")->required();
  show->add_flag("--json", o->json, "print the version and every property");
  show->add_flag("--json-lines", o->json_lines,
                 "print each entry as one JSON object per line");
  show->callback([o] { RunShow(*o); });

  CLI::App* select = queue->add_subcommand(
      "select",
      "Print the entries a worker should see, in the order it should take "
      "them, by applying one or more filters to a queue file");
  select->add_option("FILE", o->file, "queue file")->required();
  select
      ->add_option(
          "--for", o->steps,
          "filter, applied in the order given: unpack, capture, export "
          "(selections in queue order); rejected[:MODE], viewable[:MODE], "
          "deferred[:MODE] with MODE first (1, default), only (2) or "
          "others (3); least-processed, most-processed; state:N (the "
          "entries in document state N)")
      ->allow_extra_args(false)
      ->required();
  select->add_option("--time", o->time,
                     "time compared by least-processed, most-processed and "
                     "viewable: scanned (default) or modified");
  select->add_option("--limit", o->limit,
                     "print only the first N entries (the next to take)");
  select->add_flag("--json", o->json, "print the entries as a JSON array");
  select->add_flag("--json-lines", o->json_lines,
                   "print each entry as one JSON object per line");
  select->footer(
      "Example: what a capture worker takes next, oldest least processed "
      "first:\n  pelinor queue select examples/queue/queue.txt --for capture "
      "--for least-processed");
  select->callback([o] { RunSelect(*o); });

  CLI::App* find = queue->add_subcommand(
      "find", "Print the first entry whose DocId matches, ignoring case");
  find->add_option("FILE", o->file, "queue file")->required();
  find->add_option("DOCID", o->doc_id, "document identifier")->required();
  find->add_flag("--json", o->json, "print the position and the entry");
  find->callback([o] { RunFind(*o); });

  CLI::App* build = queue->add_subcommand(
      "build", "Write a queue file holding the entries of status files");
  build->add_option("FILE", o->file, "queue file to write")->required();
  build->add_option("STATUSFILES", o->files, "status files, in queue order");
  build->callback([o] { RunBuild(*o); });

  CLI::App* entry = queue->add_subcommand(
      "entry", "Show or write a queue status file (one document's entry)");
  entry->require_subcommand(1);
  CLI::App* entry_show =
      entry->add_subcommand("show", "Print every property of the entry");
  entry_show->add_option("STATUSFILE", o->file, "queue status file")
      ->required();
  entry_show->add_flag("--json", o->json, "print the entry as JSON");
  entry_show->callback([o] { RunEntryShow(*o); });
  CLI::App* entry_write = entry->add_subcommand(
      "write",
      "Write a status file: a new entry (or the one --from names) with the "
      "properties --set gives");
  entry_write->add_option("STATUSFILE", o->file, "queue status file to write")
      ->required();
  entry_write->add_option("--from", o->from,
                          "start from the entry of this status file");
  entry_write
      ->add_option(
          "--set", o->sets,
          "NAME=VALUE for a stored property, e.g. DocId=INV0001, "
          "PELINOR_State=3, Reject=true (names as `entry show` prints them)")
      ->allow_extra_args(false);
  entry_write->callback([o] { RunEntryWrite(*o); });

  CLI::App* reject =
      queue->add_subcommand("reject", "Show or write a reject message file");
  reject->require_subcommand(1);
  CLI::App* reject_show =
      reject->add_subcommand("show", "Print the reject message");
  reject_show->add_option("FILE", o->file, "reject message file")->required();
  reject_show->add_flag("--json", o->json,
                        "print the version and the message as JSON");
  reject_show->callback([o] { RunRejectShow(*o); });
  CLI::App* reject_write = reject->add_subcommand(
      "write", "Write a reject message file (the message is one line)");
  reject_write->add_option("FILE", o->file, "reject message file to write")
      ->required();
  reject_write->add_option("MESSAGE", o->message, "the message")->required();
  reject_write->callback([o] { RunRejectWrite(*o); });
}

}  // namespace pelinor::cli
