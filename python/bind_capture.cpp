// Bindings of the capture run: settings snapshots, CaptureDocument() on a
// document in memory and cCaptureRun over tag files.
//
// cCaptureRun.Run() lets go of the GIL while documents are captured, so
// other Python threads go on; the per-file callback is called with it.

#include <exception>
#include <functional>
#include <optional>
#include <vector>

#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/settings_snapshot.h"
#include "python/binding_util.h"

namespace pelinor::python {
namespace {

using Snapshot = std::shared_ptr<cSettingsSnapshot>;

Snapshot Mutable(std::shared_ptr<const cSettingsSnapshot> s) {
  return std::const_pointer_cast<cSettingsSnapshot>(std::move(s));
}

std::vector<std::string> Bytes(const std::vector<Path>& paths) {
  std::vector<std::string> out;
  out.reserve(paths.size());
  for (const Path& p : paths) out.push_back(p.bytes);
  return out;
}

}  // namespace

void BindSnapshot(py::module_& m) {
  py::class_<cSettingsSnapshot, Snapshot>(
      m, "cSettingsSnapshot",
      "The server settings a batch reads once: the date locale, the profile "
      "directory and its 'CharMap.txt'. Immutable; made with Take() or "
      "Make().")
      .def_static(
          "Take", [] { return Mutable(cSettingsSnapshot::Take()); },
          "Reads 'HalvernLocale' and 'ProfileDir' from the machine-wide "
          "settings and loads 'CharMap.txt' from that directory.")
      .def_static(
          "Make",
          [](std::optional<Text> locale, const Path& profile_dir) {
            std::optional<std::string> l;
            if (locale) l = locale->bytes;
            return Mutable(cSettingsSnapshot::Make(l, profile_dir.bytes));
          },
          py::arg("locale"), py::arg("profile_dir") = Path{},
          "A snapshot from given values: `locale` as 'HalvernLocale' would "
          "hold it (None: not set), `profile_dir` the directory of "
          "'CharMap.txt' ('' for none).")
      .def(
          "Locale",
          [](const cSettingsSnapshot& s, const Text& def) {
            return Text{s.Locale(def.bytes)};
          },
          py::arg("strDefault") = Text{"GB"},
          "'HalvernLocale' as read, or `strDefault` when it was not set.")
      .def(
          "ProfileDir",
          [](const cSettingsSnapshot& s) { return Path{s.ProfileDir()}; },
          "The resolved profile directory; '' when none is set.")
      .def(
          "CharMapPath",
          [](const cSettingsSnapshot& s) { return Path{s.CharMapPath()}; },
          "The path of 'CharMap.txt' in ProfileDir(), or ''.")
      .def(
          "CharMapError",
          [](const cSettingsSnapshot& s) { return Text{s.CharMapError()}; },
          "The loader's message when the mapping file could not be read.");
}

void BindCapture(py::module_& m) {
  m.attr("kCaptureInvalidStatus") = kCaptureInvalidStatus;
  m.attr("kInvalidLineMessage") = kInvalidLineMessage;
  m.attr("kCaptureReviewStatus") = kCaptureReviewStatus;
  m.attr("kReviewMessagePrefix") = kReviewMessagePrefix;
  m.attr("kReviewLineMessage") = kReviewLineMessage;

  py::class_<cCaptureOptions> opts(m, "cCaptureOptions",
                                   "What a capture does besides its rules.");
  opts.def(py::init<>())
      .def_readwrite("Recheck", &cCaptureOptions::Recheck,
                     "Check values whose status is already 0 again.")
      .def_readwrite("ReviewGuess", &cCaptureOptions::ReviewGuess,
                     "Give a value whose repairs include a guess "
                     "kCaptureReviewStatus instead of 0, so that a person "
                     "checks it.");
  opts.def_property(
      "LogFile", [](const cCaptureOptions& o) { return Path{o.LogFile}; },
      [](cCaptureOptions& o, const Path& p) { o.LogFile = p.bytes; },
      "The pattern evaluation log ('' for none).");

  py::class_<cCaptureValue> value(m, "cCaptureValue", "One checked value.");
  TextMembers(value, {{"Name", &cCaptureValue::Name},
                      {"Raw", &cCaptureValue::Raw},
                      {"Result", &cCaptureValue::Result},
                      {"Message", &cCaptureValue::Message}});
  value.def("__repr__", [](const cCaptureValue& v) {
    return py::str("<cCaptureValue Name={!r} Raw={!r} Result={!r} Status={}>")
        .format(DecodeCp1252(v.Name), DecodeCp1252(v.Raw),
                DecodeCp1252(v.Result), v.Status);
  });
  value.def_readwrite("Status", &cCaptureValue::Status)
      .def_readwrite("Changed", &cCaptureValue::Changed,
                     "Whether this capture changed the value.")
      .def_readonly("Steps", &cCaptureValue::Steps,
                    "The repair steps that changed it (copies).")
      .def_property_readonly(
          "Risk",
          [](const cCaptureValue& v) {
            return Text{std::string(RiskClassName(v.Risk))};
          },
          "The highest class of the steps ('' when none).");

  py::class_<cCaptureReport> report(m, "cCaptureReport",
                                    "The outcome of capturing one document.");
  report
      .def_readonly("Values", &cCaptureReport::Values,
                    "Fields, then cells row by row (copies).")
      .def_readwrite("Status", &cCaptureReport::Status)
      .def_readwrite("InvalidCount", &cCaptureReport::InvalidCount)
      .def_readwrite("ReviewCount", &cCaptureReport::ReviewCount,
                     "Of the values, those to check.");
  TextMember(report, "Message", &cCaptureReport::Message);

  m.def(
      "CaptureDocument",
      [](cDocumentData& doc, const std::optional<cCaptureOptions>& options,
         const Snapshot& settings) {
        if (!doc.Profile) {
          throw py::value_error("CaptureDocument needs doc.Profile to be set");
        }
        return CaptureDocument(doc, options.value_or(cCaptureOptions{}),
                               settings.get());
      },
      py::arg("doc"), py::arg("options") = std::nullopt,
      py::arg("settings") = nullptr,
      "Captures `doc` with its Profile and Template: every field and cell "
      "is validated for its data type, cleaned where the OCR text allows, "
      "and given a status and a message; rows and the document get a status "
      "from their values. With `settings` no registry value and no file is "
      "read for a value. Raises ValueError when doc.Profile is None.");

  py::class_<cCaptureRunOptions> ro(m, "cCaptureRunOptions",
                                    "The inputs of a capture run.");
  ro.def(py::init<>())
      .def_readwrite("Capture", &cCaptureRunOptions::Capture)
      .def_readwrite("InPlace", &cCaptureRunOptions::InPlace,
                     "Rewrite each input.")
      .def_readwrite("Jobs", &cCaptureRunOptions::Jobs,
                     "Documents captured at once; 0: the number of cores.");
  for (const auto& entry :
       {std::make_pair("ProfileFile", &cCaptureRunOptions::ProfileFile),
        std::make_pair("TemplateFile", &cCaptureRunOptions::TemplateFile),
        std::make_pair("OutDir", &cCaptureRunOptions::OutDir)}) {
    // Plain copies: lambdas cannot capture structured bindings in C++20.
    const auto name = std::get<0>(entry);
    const auto member = std::get<1>(entry);
    ro.def_property(
        name, [member](const cCaptureRunOptions& o) { return Path{o.*member}; },
        [member](cCaptureRunOptions& o, const Path& p) {
          o.*member = p.bytes;
        });
  }

  py::class_<cCaptureFileResult> fr(m, "cCaptureFileResult",
                                    "One document of a run.");
  fr.def_readonly("Index", &cCaptureFileResult::Index,
                  "Position in the input list.")
      .def_property_readonly(
          "File", [](const cCaptureFileResult& r) { return Path{r.File}; })
      .def_property_readonly(
          "Written",
          [](const cCaptureFileResult& r) { return Path{r.Written}; },
          "The file written, '' for none.")
      .def_readonly("Unchanged", &cCaptureFileResult::Unchanged,
                    "Written held these bytes already and was left "
                    "untouched.")
      .def_property_readonly(
          "Error", [](const cCaptureFileResult& r) { return Text{r.Error}; },
          "'file: message' when it was not read or written.")
      .def_readonly("Captured", &cCaptureFileResult::Captured)
      .def_readonly("Report", &cCaptureFileResult::Report);

  using Run = std::shared_ptr<cCaptureRun>;
  py::class_<cCaptureRun, Run>(
      m, "cCaptureRun",
      "Reads, captures and writes tag files, on one thread or several, "
      "reporting in input order. Made with Open(); immutable afterwards.")
      .def_static(
          "Open",
          [](const cCaptureRunOptions& options, const Snapshot& settings) {
            std::string err;
            std::shared_ptr<const cCaptureRun> run =
                settings ? cCaptureRun::Open(options, settings, err)
                         : cCaptureRun::Open(options, err);
            Check(run != nullptr, err);
            return std::const_pointer_cast<cCaptureRun>(run);
          },
          py::arg("options"), py::arg("settings") = nullptr,
          "Takes a settings snapshot (or uses `settings`), reads the profile "
          "and template and checks the options. Raises pelinor.Error with "
          "the library's message.")
      .def("Options", &cCaptureRun::Options, "The run's options (a copy).")
      .def(
          "OutputPath",
          [](const cCaptureRun& r, const Path& file) {
            return Path{r.OutputPath(file.bytes)};
          },
          py::arg("file"),
          "Where the document read from `file` is written, or ''.")
      .def(
          "CheckOutputs",
          [](const cCaptureRun& r, const std::vector<Path>& files) {
            std::string err;
            Check(r.CheckOutputs(Bytes(files), err), err);
          },
          py::arg("files"),
          "Raises pelinor.Error when two inputs would write one output file.")
      .def(
          "CaptureFile",
          [](const cCaptureRun& r, const Path& file) {
            py::gil_scoped_release release;
            return r.CaptureFile(file.bytes);
          },
          py::arg("file"),
          "Reads, captures and writes one file; failures are in the "
          "result's Error.")
      .def(
          "Run",
          [](const cCaptureRun& r, const std::vector<Path>& files,
             const std::optional<py::function>& each) {
            std::vector<cCaptureFileResult> results;
            const std::vector<std::string> names = Bytes(files);
            // An exception from `each` stops the run and is raised once
            // the run's threads are done; it never crosses the library.
            std::exception_ptr failure;
            {
              py::gil_scoped_release release;
              r.Run(names, [&](const cCaptureFileResult& result) {
                if (!each) {
                  results.push_back(result);
                  return true;
                }
                py::gil_scoped_acquire acquire;
                try {
                  return py::cast<bool>((*each)(result));
                } catch (...) {
                  failure = std::current_exception();
                  return false;
                }
              });
            }
            if (failure) std::rethrow_exception(failure);
            return results;
          },
          py::arg("files"), py::arg("each") = std::nullopt,
          "Captures `files` with Options().Jobs threads. Without `each` "
          "answers the results in input order; with it calls each(result) "
          "in input order (a false answer stops the run) and answers [].");

  m.def(
      "CollectTagFiles",
      [](const std::vector<Path>& inputs) {
        std::vector<std::string> files;
        std::string err;
        Check(CollectTagFiles(Bytes(inputs), files, err), err);
        std::vector<Path> out;
        for (std::string& f : files) out.push_back(Path{std::move(f)});
        return out;
      },
      py::arg("inputs"),
      "The documents named by `inputs`: a file as given, a directory's "
      "'*.tag' files at any depth in name order. Raises pelinor.Error for "
      "an input that does not exist.");
}

}  // namespace pelinor::python
