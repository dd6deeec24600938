// Bindings of the stored objects: profiles with their field and header
// types, templates with their entries and tables, and documents with their
// fields, pseudo fields and line data.
//
// Every object is held by std::shared_ptr on both sides, so an object kept
// in Python outlives the owner it came from (a field after its document);
// links back to an owner are weak and read as None once the owner is gone.

#include <optional>
#include <tuple>

#include "pelinor/document_data.h"
#include "pelinor/field_data.h"
#include "pelinor/line_data.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"
#include "python/binding_util.h"

namespace pelinor::python {
namespace {

template <typename T>
using Shared = py::class_<T, std::shared_ptr<T>>;

// A Find...() routine bool F(name, T&) as name -> T | None.
template <typename Owner, typename T>
auto Finder(bool (Owner::*f)(const std::string&, std::shared_ptr<T>&) const) {
  return [f](const Owner& o, const Text& name) -> std::shared_ptr<T> {
    std::shared_ptr<T> found;
    if (!(o.*f)(name.bytes, found)) return nullptr;
    return found;
  };
}

// A document's Find() form bool F(name, idx&, field&) as
// name -> (index, field) | None.
using FoundField =
    std::optional<std::tuple<int32_t, std::shared_ptr<cFieldData>>>;

void BindProfile(py::module_& m) {
  Shared<cAnchorRef> anchor(m, "cAnchorRef",
                            "An anchor: a named text and an offset from it.");
  anchor.def(py::init<>());
  TextMember(anchor, "Name", &cAnchorRef::Name);
  IntMembers(anchor, {{"XOffset", &cAnchorRef::XOffset},
                      {"YOffset", &cAnchorRef::YOffset}});
  BindCollection<std::shared_ptr<cAnchorRef>>(m, "AnchorRefCollection",
                                              "A one-based list of anchors.");

  Shared<cPelinorState> state(
      m, "cPelinorState", "A document state of a profile with its messages.");
  state.def(py::init<>());
  IntMembers(state, {{"State", &cPelinorState::State}});
  TextMembers(state,
              {{"tbcDisplayMessage", &cPelinorState::tbcDisplayMessage},
               {"OnHoldDisplayMessage", &cPelinorState::OnHoldDisplayMessage}});
  BindCollection<std::shared_ptr<cPelinorState>>(
      m, "PelinorStateCollection", "A one-based list of document states.");

  Shared<cFieldType> ft(
      m, "cFieldType", "The profile-level definition of one capturable field.");
  ft.def(py::init<>());
  IntMembers(ft, {{"DataType", &cFieldType::DataType},
                  {"DataLocation", &cFieldType::DataLocation},
                  {"Catagory", &cFieldType::Catagory},
                  {"InternalValidateLevel", &cFieldType::InternalValidateLevel},
                  {"Hidden", &cFieldType::Hidden},
                  {"PtnMode", &cFieldType::PtnMode},
                  {"PtnAllowOverride", &cFieldType::PtnAllowOverride}});
  TextMembers(ft, {{"CaptionSearch", &cFieldType::CaptionSearch},
                   {"Name", &cFieldType::Name},
                   {"DisplayName", &cFieldType::DisplayName},
                   {"Candidate", &cFieldType::Candidate},
                   {"Default", &cFieldType::Default},
                   {"Pattern", &cFieldType::Pattern}});
  ft.def_readonly("AnchorRefs", &cFieldType::AnchorRefs);
  BindCollection<std::shared_ptr<cFieldType>>(
      m, "FieldTypeCollection", "A one-based list of field types.");

  Shared<cLineHdrType> hdr(
      m, "cLineHdrType",
      "A line-item header type of a profile, or a template's or document's "
      "line header.");
  hdr.def(py::init<>());
  TextMembers(hdr, {{"Name", &cLineHdrType::Name},
                    {"DisplayName", &cLineHdrType::DisplayName},
                    {"Pattern", &cLineHdrType::Pattern}});
  IntMembers(hdr,
             {{"DataType", &cLineHdrType::DataType},
              {"DataFlags", &cLineHdrType::DataFlags},
              {"InternalValidateLevel", &cLineHdrType::InternalValidateLevel},
              {"Hidden", &cLineHdrType::Hidden},
              {"ReadOnly", &cLineHdrType::ReadOnly},
              {"PtnMode", &cLineHdrType::PtnMode},
              {"PtnAllowOverride", &cLineHdrType::PtnAllowOverride}});
  BindCollection<std::shared_ptr<cLineHdrType>>(
      m, "LineHdrTypeCollection", "A one-based list of line headers.");

  Shared<cProfile> p(
      m, "cProfile",
      "A capture profile: scripts, directories, document-handling switches, "
      "permitted users, document states, hold and delete reasons, field "
      "types and line-item header types. ReadSettings() adds to what the "
      "profile holds; Purge() first to reuse one.");
  p.def(py::init<>());
  IntMembers(p, {{"OCREnabled", &cProfile::OCREnabled},
                 {"LineLevelEnabled", &cProfile::LineLevelEnabled},
                 {"InvalidState", &cProfile::InvalidState},
                 {"DeletePrompt", &cProfile::DeletePrompt},
                 {"LastClientViewMode", &cProfile::LastClientViewMode},
                 {"InternalValidateLevel", &cProfile::InternalValidateLevel},
                 {"FlattenDuplex", &cProfile::FlattenDuplex},
                 {"OCRPages", &cProfile::OCRPages},
                 {"OutputPagesText", &cProfile::OutputPagesText},
                 {"LineLevel", &cProfile::LineLevel},
                 {"DocEndMarkInclusive", &cProfile::DocEndMarkInclusive},
                 {"DocEndMarkSideMode", &cProfile::DocEndMarkSideMode},
                 {"ExpectedAttachments", &cProfile::ExpectedAttachments}});
  TextMembers(p, {{"TemplateDetectPages", &cProfile::TemplateDetectPages},
                  {"Version", &cProfile::Version},
                  {"ValidateScript", &cProfile::ValidateScript},
                  {"ExportScript", &cProfile::ExportScript},
                  {"OnEntryScript", &cProfile::OnEntryScript},
                  {"RejectScript", &cProfile::RejectScript},
                  {"DeleteScript", &cProfile::DeleteScript},
                  {"TemplateConfig", &cProfile::TemplateConfig},
                  {"LineDataRowSpaceMax", &cProfile::LineDataRowSpaceMax},
                  {"LineDataEntitySpaceMax", &cProfile::LineDataEntitySpaceMax},
                  {"Name", &cProfile::Name},
                  {"DisplayName", &cProfile::DisplayName},
                  {"TemplateDir", &cProfile::TemplateDir},
                  {"QueueDirRemote", &cProfile::QueueDirRemote},
                  {"QueueDirLocal", &cProfile::QueueDirLocal}});
  p.def_readonly("PelinorStates", &cProfile::PelinorStates)
      .def_readonly("OnHoldReasons", &cProfile::OnHoldReasons)
      .def_readonly("DeleteReasons", &cProfile::DeleteReasons)
      .def_readonly("FieldTypes", &cProfile::FieldTypes)
      .def_readonly("PseudoFieldTypes", &cProfile::PseudoFieldTypes)
      .def_readonly("LineItemHdrs", &cProfile::LineItemHdrs)
      .def_readonly("Allowed", &cProfile::Allowed)
      .def(
          "ReadSettings",
          [](cProfile& p, const Text& name, const Path& file) {
            std::string err;
            Check(p.ReadSettings(name.bytes, file.bytes, err), err);
          },
          py::arg("ProfileName"), py::arg("FileName"),
          "Reads the profile settings file `FileName` (settings form from "
          "version 0.91 on, record form before). Raises pelinor.Error with "
          "the library's message ('Invalid version number', 'Cannot find "
          "file ' + name, ...); what was read before stays set.")
      .def(
          "ReadSetting",
          [](const cProfile& p, const Path& file, const Text& section,
             const Text& name) {
            std::string err;
            std::string v =
                p.ReadSetting(file.bytes, section.bytes, name.bytes, err);
            Check(err.empty(), err);
            return Text{v};
          },
          py::arg("FileName"), py::arg("Section") = Text{},
          py::arg("Name") = Text{},
          "The 'DisplayName' of section 'Main' of the settings file ('' "
          "when absent); `Section` and `Name` are not used.")
      .def(
          "WriteSettings",
          [](const cProfile& p, const Path& file) {
            std::string err;
            Check(p.WriteSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Writes the record form to `FileName`. Raises pelinor.Error "
          "('Cannot create file ' + name, ...); no half-written file is "
          "left.")
      .def("FindField", Finder(&cProfile::FindField), py::arg("strFieldName"),
           "The first field type named `strFieldName` (ignoring case), or "
           "None. Pseudo field types are not searched.")
      .def(
          "FindLineItemHdr",
          [](const cProfile& p, const Text& name)
              -> std::optional<
                  std::tuple<std::shared_ptr<cLineHdrType>, int32_t>> {
            std::shared_ptr<cLineHdrType> hdr;
            int32_t idx = 0;
            if (!p.FindLineItemHdr(name.bytes, hdr, idx)) return std::nullopt;
            return std::make_tuple(hdr, idx);
          },
          py::arg("strLineHdrName"),
          "(header, one-based index) of the first line-item header named "
          "`strLineHdrName` (ignoring case), or None.")
      .def(
          "FindAllowableUser",
          [](const cProfile& p, const Text& name) {
            return p.FindAllowableUser(name.bytes);
          },
          py::arg("strName"), "Whether `strName` is allowed (case matters).")
      .def(
          "FileVersion",
          [](const cProfile& p) { return Text{p.FileVersion()}; },
          "The library's version.")
      .def("Purge", &cProfile::Purge, "Empties every collection.");
}

void BindTemplate(py::module_& m) {
  Shared<cExtractZone> zone(m, "cExtractZone", "One rectangle of an entry.");
  zone.def(py::init<>());
  for (const auto& entry :
       {std::make_tuple("Left", &cExtractZone::LeftValue,
                        static_cast<void (cExtractZone::*)(const std::string&)>(
                            &cExtractZone::Left)),
        std::make_tuple("Top", &cExtractZone::TopValue,
                        static_cast<void (cExtractZone::*)(const std::string&)>(
                            &cExtractZone::Top)),
        std::make_tuple("Width", &cExtractZone::WidthValue,
                        static_cast<void (cExtractZone::*)(const std::string&)>(
                            &cExtractZone::Width)),
        std::make_tuple("Height", &cExtractZone::HeightValue,
                        static_cast<void (cExtractZone::*)(const std::string&)>(
                            &cExtractZone::Height))}) {
    // Plain copies: lambdas cannot capture structured bindings in C++20.
    const auto name = std::get<0>(entry);
    const auto get = std::get<1>(entry);
    const auto set = std::get<2>(entry);
    zone.def_property(
        name, [get](const cExtractZone& z) { return (z.*get)(); },
        [set](cExtractZone& z, const Text& v) { (z.*set)(v.bytes); },
        "The coordinate as a number; set from its text.");
  }
  BindCollection<std::shared_ptr<cExtractZone>>(m, "ExtractZoneCollection",
                                                "A one-based list of zones.");

  Shared<cExtractZones> zones(
      m, "cExtractZones",
      "A template's entry for one field: its zones, anchors and overrides "
      "(-100 means none).");
  zones.def(py::init<>());
  IntMembers(zones,
             {{"DataTypeOverride", &cExtractZones::DataTypeOverride},
              {"DataLocationOverride", &cExtractZones::DataLocationOverride},
              {"Catagory", &cExtractZones::Catagory},
              {"AutoTemplate", &cExtractZones::AutoTemplate},
              {"PatternModeOverride", &cExtractZones::PatternModeOverride}});
  TextMembers(zones, {{"FieldName", &cExtractZones::FieldName},
                      {"CaptionSearch", &cExtractZones::CaptionSearch},
                      {"PatternOverride", &cExtractZones::PatternOverride}});
  zones.def_readonly("Zones", &cExtractZones::Zones)
      .def_readonly("AnchorRefs", &cExtractZones::AnchorRefs)
      .def_property_readonly(
          "Template", [](const cExtractZones& z) { return z.Template.lock(); },
          "The owning template, or None once it is gone.")
      .def("OverrideCount", &cExtractZones::OverrideCount)
      .def("CreateExtractZone", &cExtractZones::CreateExtractZone)
      .def("CreateAnchorRef", &cExtractZones::CreateAnchorRef);
  BindCollection<std::shared_ptr<cExtractZones>>(
      m, "ExtractZonesCollection", "A one-based list of template entries.");

  Shared<cColumnExtract> col(m, "cColumnExtract", "A column of a line table.");
  col.def(py::init<>());
  IntMembers(col, {{"Left", &cColumnExtract::Left},
                   {"Width", &cColumnExtract::Width},
                   {"TransferDiscard", &cColumnExtract::TransferDiscard}});
  TextMembers(col, {{"Name", &cColumnExtract::Name},
                    {"TransferTo", &cColumnExtract::TransferTo},
                    {"TransferRows", &cColumnExtract::TransferRows}});
  BindCollection<std::shared_ptr<cColumnExtract>>(
      m, "ColumnExtractCollection", "A one-based list of columns.");

  Shared<cTableExtract> table(m, "cTableExtract",
                              "A line table of a template.");
  table.def(py::init<>());
  IntMembers(table, {{"Left", &cTableExtract::Left},
                     {"Top", &cTableExtract::Top},
                     {"Width", &cTableExtract::Width},
                     {"Height", &cTableExtract::Height},
                     {"Location", &cTableExtract::Location},
                     {"PageExtract", &cTableExtract::PageExtract},
                     {"SheetNo", &cTableExtract::SheetNo}});
  TextMembers(table, {{"TopAnchorRef", &cTableExtract::TopAnchorRef},
                      {"BottomAnchorRef", &cTableExtract::BottomAnchorRef}});
  table.def_readonly("TopAnchorRefs", &cTableExtract::TopAnchorRefs)
      .def_readonly("BottomAnchorRefs", &cTableExtract::BottomAnchorRefs)
      .def_readonly("Columns", &cTableExtract::Columns)
      .def("CreateColumn", &cTableExtract::CreateColumn)
      .def("CreateTopAnchorRef", &cTableExtract::CreateTopAnchorRef)
      .def("CreateBottomAnchorRef", &cTableExtract::CreateBottomAnchorRef);
  BindCollection<std::shared_ptr<cTableExtract>>(m, "TableExtractCollection",
                                                 "A one-based list of tables.");

  Shared<cTemplate> t(
      m, "cTemplate",
      "One document layout of a capture profile. Made with New() (or "
      "cTemplate()). Properties marked inheriting read the profile's value "
      "until the template sets its own.");
  t.def(py::init(&cTemplate::New))
      .def_static("New", &cTemplate::New, "Makes an empty template.")
      .def_readonly("LineHeaders", &cTemplate::LineHeaders)
      .def_readwrite("Profile", &cTemplate::Profile,
                     "The profile inherited values come from (shared).")
      .def_readonly("FieldZoneRefs", &cTemplate::FieldZoneRefs)
      .def_readonly("PseudoFieldZoneRefs", &cTemplate::PseudoFieldZoneRefs)
      .def_readonly("LineTables", &cTemplate::LineTables)
      .def_readonly("DocEndMarks", &cTemplate::DocEndMarks);
  TextMembers(t,
              {{"Version", &cTemplate::Version},
               {"ScannerProfile", &cTemplate::ScannerProfile},
               {"PelinorProfile", &cTemplate::PelinorProfile},
               {"UserName", &cTemplate::UserName},
               {"TimeLastModified", &cTemplate::TimeLastModified},
               {"TemplateIdentifier", &cTemplate::TemplateIdentifier},
               {"TemplateDisambiguatedID", &cTemplate::TemplateDisambiguatedID},
               {"TemplateIDDatumX", &cTemplate::TemplateIDDatumX},
               {"TemplateIDDatumY", &cTemplate::TemplateIDDatumY},
               {"UserData", &cTemplate::UserData},
               {"LineDataVertAlignTol", &cTemplate::LineDataVertAlignTol}});
  IntMembers(t, {{"UserDataPrimary", &cTemplate::UserDataPrimary},
                 {"ExtractType", &cTemplate::ExtractType},
                 {"Disambiguate", &cTemplate::Disambiguate},
                 {"LineDataPartition", &cTemplate::LineDataPartition},
                 {"LineDataDiscardStart", &cTemplate::LineDataDiscardStart},
                 {"LineDataDiscardEnd", &cTemplate::LineDataDiscardEnd}});
  using IntGet = int32_t (cTemplate::*)() const;
  using IntSet = void (cTemplate::*)(int32_t);
  for (const auto& entry : {
           std::make_tuple(
               "DocEndMarkInclusive",
               static_cast<IntGet>(&cTemplate::DocEndMarkInclusive),
               static_cast<IntSet>(&cTemplate::DocEndMarkInclusive)),
           std::make_tuple("DocEndMarkSideMode",
                           static_cast<IntGet>(&cTemplate::DocEndMarkSideMode),
                           static_cast<IntSet>(&cTemplate::DocEndMarkSideMode)),
           std::make_tuple(
               "ExpectedAttachments",
               static_cast<IntGet>(&cTemplate::ExpectedAttachments),
               static_cast<IntSet>(&cTemplate::ExpectedAttachments)),
           std::make_tuple("FlattenDuplex",
                           static_cast<IntGet>(&cTemplate::FlattenDuplex),
                           static_cast<IntSet>(&cTemplate::FlattenDuplex)),
           std::make_tuple("OCRPages",
                           static_cast<IntGet>(&cTemplate::OCRPages),
                           static_cast<IntSet>(&cTemplate::OCRPages)),
           std::make_tuple("LineLevel",
                           static_cast<IntGet>(&cTemplate::LineLevel),
                           static_cast<IntSet>(&cTemplate::LineLevel)),
       }) {
    // Plain copies: lambdas cannot capture structured bindings in C++20.
    const auto name = std::get<0>(entry);
    const auto get = std::get<1>(entry);
    const auto set = std::get<2>(entry);
    t.def_property(
        name, [get](const cTemplate& x) { return (x.*get)(); },
        [set](cTemplate& x, int32_t v) { (x.*set)(v); },
        "Inheriting: the profile's value until the template sets its own.");
  }
  using TextGet = std::string (cTemplate::*)() const;
  using TextSet = void (cTemplate::*)(const std::string&);
  for (const auto& entry :
       {std::make_tuple("LineDataRowSpaceMax",
                        static_cast<TextGet>(&cTemplate::LineDataRowSpaceMax),
                        static_cast<TextSet>(&cTemplate::LineDataRowSpaceMax)),
        std::make_tuple(
            "LineDataEntitySpaceMax",
            static_cast<TextGet>(&cTemplate::LineDataEntitySpaceMax),
            static_cast<TextSet>(&cTemplate::LineDataEntitySpaceMax))}) {
    // Plain copies: lambdas cannot capture structured bindings in C++20.
    const auto name = std::get<0>(entry);
    const auto get = std::get<1>(entry);
    const auto set = std::get<2>(entry);
    t.def_property(
        name, [get](const cTemplate& x) { return Text{(x.*get)()}; },
        [set](cTemplate& x, const Text& v) { (x.*set)(v.bytes); },
        "Inheriting: the profile's value until the template sets its own.");
  }
  t.def("dtTimeLastModified", &cTemplate::dtTimeLastModified,
        "TimeLastModified as a serial date (days from 1899-12-30), or 0.")
      .def("DAInvoicesOverride", &cTemplate::DAInvoicesOverride,
           "From the marker files: -1 none, 0 '.neverDA', 1 '.alwaysDA'.")
      .def("ContentReuseOverride", &cTemplate::ContentReuseOverride,
           "From the marker files: -1 none, 0 '.crm_auto', 1 "
           "'.crm_content', 2 '.crm_donotuse'.")
      .def(
          "ReadSettings",
          [](cTemplate& t, const Path& file) {
            std::string err;
            Check(t.ReadSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Reads the template file of any version, adding to the "
          "collections, then applies the marker files. Raises pelinor.Error "
          "with the library's message; what was read stays set.")
      .def(
          "WriteSettings",
          [](const cTemplate& t, const Path& file) {
            std::string err;
            Check(t.WriteSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Writes the template file in the current version; raises "
          "pelinor.Error, leaving no half-written file.")
      .def("FindFieldZones", Finder(&cTemplate::FindFieldZones),
           py::arg("strFieldName"),
           "The first field entry for `strFieldName` (ignoring case), or "
           "None.")
      .def("FindPseudoFieldZones", Finder(&cTemplate::FindPseudoFieldZones),
           py::arg("strFieldName"),
           "The first pseudo-field entry for `strFieldName`, or None.")
      .def("FindLineHeaders", Finder(&cTemplate::FindLineHeaders),
           py::arg("strName"),
           "The first line header named `strName`, or None.")
      .def("CreateExtractZones", &cTemplate::CreateExtractZones,
           "Appends a new field entry pointing to this template.")
      .def("CreatePseudoExtractZones", &cTemplate::CreatePseudoExtractZones,
           "Appends a new pseudo-field entry.")
      .def("CreateLineHeader", &cTemplate::CreateLineHeader,
           "Appends a line header with no overrides.")
      .def("CreateLineTable", &cTemplate::CreateLineTable,
           "Appends a new line table.")
      .def("CreateDocEndMark", &cTemplate::CreateDocEndMark,
           "Appends a new document-end mark.")
      .def(
          "Copy",
          [](const cTemplate& t) {
            std::shared_ptr<cTemplate> target;
            t.Copy(target);
            return target;
          },
          "A deep copy (a new template; Profile is shared).")
      .def("Purge", &cTemplate::Purge,
           "Empties the entries, marks, rules, conditions and line headers.")
      .def("PurgeTplLineTables", &cTemplate::PurgeTplLineTables,
           "Empties LineTables.");
}

void BindDocument(py::module_& m) {
  Shared<cOptionItem> opt(m, "cOptionItem",
                          "One choice offered for a field or a cell.");
  opt.def(py::init<>());
  TextMembers(opt,
              {{"Name", &cOptionItem::Name}, {"value", &cOptionItem::value}});
  BindCollection<std::shared_ptr<cOptionItem>>(m, "OptionItemCollection",
                                               "A one-based list of options.");

  Shared<cFieldData> f(
      m, "cFieldData",
      "One extracted field of a document. Data type, location and pattern "
      "resolve at every read over the field, the template and the profile. "
      "Document is None once the document is gone; the field stays valid.");
  f.def(py::init<>());
  TextMembers(f, {{"Name", &cFieldData::Name},
                  {"value", &cFieldData::value},
                  {"StatusMessage", &cFieldData::StatusMessage}});
  IntMembers(f, {{"Status", &cFieldData::Status},
                 {"Left", &cFieldData::Left},
                 {"Top", &cFieldData::Top},
                 {"Width", &cFieldData::Width},
                 {"Height", &cFieldData::Height},
                 {"DataEntryType", &cFieldData::DataEntryType}});
  Repr(f, "cFieldData");
  f.def_readonly("OptionItems", &cFieldData::OptionItems)
      .def_property_readonly(
          "Document", [](const cFieldData& x) { return x.Document.lock(); },
          "The owning document, or None once it is gone.")
      .def_property(
          "DataType", [](const cFieldData& x) { return x.DataType(); },
          [](cFieldData& x, int32_t v) { x.DataType(v); },
          "The explicit data type when not 0, else DefaultDataType().")
      .def_property_readonly(
          "ExplicitDataType", &cFieldData::ExplicitDataType,
          "The data type stored with the field; 0 when it follows the "
          "template and profile.")
      .def_property(
          "DataLocation", [](const cFieldData& x) { return x.DataLocation(); },
          [](cFieldData& x, int32_t v) { x.DataLocation(v); },
          "The explicit data location when not 0, else "
          "DefaultDataLocation().")
      .def("DefaultDataType", &cFieldData::DefaultDataType,
           "0 without a profile field type; the template's compatible "
           "override when set; the profile type otherwise.")
      .def("DefaultDataLocation", &cFieldData::DefaultDataLocation)
      .def(
          "GetDefault",
          [](const cFieldData& x) { return Text{x.GetDefault()}; },
          "The profile field type's Default text, or ''.")
      .def("ExtractionZonesRef", &cFieldData::ExtractionZonesRef,
           "The template's entry for Name, or None.")
      .def(
          "Pattern", [](const cFieldData& x) { return Text{x.Pattern()}; },
          "The template pattern unless it is the default marker, else the "
          "profile pattern.")
      .def(
          "Validate",
          [](cFieldData& x, const Path& log) {
            std::string l = log.bytes;
            return x.Validate(l);
          },
          py::arg("LogFile") = Path{},
          "Checks value for the resolved data type. Pattern types remove the "
          "blanks from value whatever the answer. Never changes the status.")
      .def("FormatDataValue", py::overload_cast<>(&cFieldData::FormatDataValue),
           "Normalises value in place for the resolved data type; a failing "
           "formatter leaves it as it was.")
      .def("ResetOptionItems", &cFieldData::ResetOptionItems)
      .def("NewOptionItem", &cFieldData::NewOptionItem);
  BindCollection<std::shared_ptr<cFieldData>>(m, "FieldDataCollection",
                                              "A one-based list of fields.");

  Shared<cLineItemData> cell(m, "cLineItemData",
                             "One cell of a row. LineData is None once the "
                             "row is gone.");
  cell.def(py::init<>());
  TextMembers(cell, {{"Name", &cLineItemData::Name},
                     {"value", &cLineItemData::value},
                     {"StatusMessage", &cLineItemData::StatusMessage}});
  IntMembers(cell, {{"Status", &cLineItemData::Status},
                    {"DataType", &cLineItemData::DataType},
                    {"Flags", &cLineItemData::Flags},
                    {"Left", &cLineItemData::Left},
                    {"Top", &cLineItemData::Top},
                    {"Width", &cLineItemData::Width},
                    {"Height", &cLineItemData::Height},
                    {"ColumnIndex", &cLineItemData::ColumnIndex},
                    {"DataEntryType", &cLineItemData::DataEntryType}});
  Repr(cell, "cLineItemData");
  cell.def_readonly("OptionItems", &cLineItemData::OptionItems)
      .def_property_readonly(
          "LineData", [](const cLineItemData& x) { return x.LineData.lock(); },
          "The owning row, or None once it is gone.")
      .def(
          "EffectivePattern",
          [](const cLineItemData& x) { return Text{x.EffectivePattern()}; },
          "The pattern of the document's line header named Name, else of "
          "the profile's header type, else ''.")
      .def(
          "Validate",
          [](cLineItemData& x, const Path& log) {
            return x.Validate(log.bytes);
          },
          py::arg("LogFile") = Path{},
          "Checks value by DataType. Never changes Status.")
      .def(
          "FormatDataValue",
          [](cLineItemData& x, const Path& log) {
            x.FormatDataValue(log.bytes);
          },
          py::arg("LogFile") = Path{},
          "Normalises value in place by DataType; kept on failure.")
      .def("ResetOptionItems", &cLineItemData::ResetOptionItems);
  BindCollection<std::shared_ptr<cLineItemData>>(m, "LineItemDataCollection",
                                                 "A one-based list of cells.");

  Shared<cLineData> row(m, "cLineData",
                        "One row of line data. Made with New() (or "
                        "cLineData()).");
  row.def(py::init(&cLineData::New))
      .def_static("New", &cLineData::New, "Makes an empty row.");
  IntMembers(row, {{"Status", &cLineData::Status},
                   {"Left", &cLineData::Left},
                   {"Top", &cLineData::Top},
                   {"Width", &cLineData::Width},
                   {"Height", &cLineData::Height},
                   {"Location", &cLineData::Location},
                   {"AvgTop", &cLineData::AvgTop},
                   {"AvgHeightToBase", &cLineData::AvgHeightToBase}});
  TextMember(row, "StatusMessage", &cLineData::StatusMessage);
  row.def_readonly("colLineItemData", &cLineData::colLineItemData)
      .def_property_readonly(
          "Document", [](const cLineData& x) { return x.Document.lock(); },
          "The owning document, or None once it is gone.")
      .def("CreateLineDataColumns", &cLineData::CreateLineDataColumns,
           "Appends one cell per line-item header type of the document's "
           "profile.")
      .def(
          "FindLineItem",
          [](const cLineData& r, const Text& name)
              -> std::optional<
                  std::tuple<int32_t, std::shared_ptr<cLineItemData>>> {
            int32_t idx = 0;
            std::shared_ptr<cLineItemData> c;
            if (!r.FindLineItem(name.bytes, idx, c)) return std::nullopt;
            return std::make_tuple(idx, c);
          },
          py::arg("Name"),
          "(one-based index, cell) of the first cell named exactly `Name`, "
          "or None.")
      .def("ClearLineItems", &cLineData::ClearLineItems,
           "Removes every cell, last first.");
  BindCollection<std::shared_ptr<cLineData>>(m, "LineDataCollection",
                                             "A one-based list of rows.");

  Shared<cDocumentData> d(
      m, "cDocumentData",
      "The extracted data of one document and its tag file. Made with New() "
      "(or cDocumentData()). Profile and Template are shared, not owned, and "
      "never stored in the file.");
  d.def(py::init(&cDocumentData::New))
      .def_static("New", &cDocumentData::New, "Makes an empty document.");
  IntMembers(d, {{"Status", &cDocumentData::Status},
                 {"FirstSheetIndex", &cDocumentData::FirstSheetIndex},
                 {"LastSheetIndex", &cDocumentData::LastSheetIndex},
                 {"FirstSideBack", &cDocumentData::FirstSideBack},
                 {"LastSideBack", &cDocumentData::LastSideBack},
                 {"PrimaryStatus", &cDocumentData::PrimaryStatus}});
  TextMembers(d,
              {{"StatusMessage", &cDocumentData::StatusMessage},
               {"ProfileName", &cDocumentData::ProfileName},
               {"PrimaryStatusMessage", &cDocumentData::PrimaryStatusMessage}});
  d.def_readwrite("Profile", &cDocumentData::Profile)
      .def_readwrite("Template", &cDocumentData::Template)
      .def_readonly("Fields", &cDocumentData::Fields)
      .def_readonly("PseudoFields", &cDocumentData::PseudoFields)
      .def_readonly("LinePseudos", &cDocumentData::LinePseudos)
      .def_readonly("DocEndMarks", &cDocumentData::DocEndMarks)
      .def_readonly("LineData", &cDocumentData::LineData)
      .def_readonly("LineHeaders", &cDocumentData::LineHeaders)
      .def_readwrite("LineEntryRow", &cDocumentData::LineEntryRow)
      .def(
          "ReadSettings",
          [](cDocumentData& doc, const Path& file) {
            std::string err;
            Check(doc.ReadSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Appends what the tag file holds. Raises pelinor.Error ('Invalid "
          "version number', 'Error reading document tags file. Incorrect "
          "parameter', ...); what was read so far stays.")
      .def(
          "WriteSettings",
          [](const cDocumentData& doc, const Path& file) {
            std::string err;
            Check(doc.WriteSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Writes the whole tag file, replacing `FileName` when complete; "
          "raises pelinor.Error with no file left behind on failure.")
      .def("CreateField", &cDocumentData::CreateField,
           "Appends a new field pointing to this document.")
      .def("CreatePseudoField", &cDocumentData::CreatePseudoField)
      .def("CreateLinePseudo", &cDocumentData::CreateLinePseudo)
      .def("CreateDocEndMark", &cDocumentData::CreateDocEndMark)
      .def("CreateLineData", &cDocumentData::CreateLineData,
           "Appends a new row pointing to this document.")
      .def("CreateLineEntryRow", &cDocumentData::CreateLineEntryRow)
      .def("CreateLineHeader", &cDocumentData::CreateLineHeader)
      .def("NewFieldData", &cDocumentData::NewFieldData)
      .def("ResetPseudoFields", &cDocumentData::ResetPseudoFields)
      .def("ResetLinePseudos", &cDocumentData::ResetLinePseudos)
      .def("ResetDocEndMarks", &cDocumentData::ResetDocEndMarks)
      .def("ClearLineHeaders", &cDocumentData::ClearLineHeaders)
      .def("ClearLineItems", &cDocumentData::ClearLineItems)
      .def("ClearLineEntryRow", &cDocumentData::ClearLineEntryRow)
      .def(
          "Find",
          [](const cDocumentData& doc, const Text& name) -> FoundField {
            int32_t idx = 0;
            std::shared_ptr<cFieldData> fd;
            if (!doc.Find(name.bytes, idx, fd)) return std::nullopt;
            return std::make_tuple(idx, fd);
          },
          py::arg("FieldName"),
          "(one-based index, field) of the first field named `FieldName` "
          "(ignoring case), or None.")
      .def(
          "FindPseudo",
          [](const cDocumentData& doc, const Text& name) -> FoundField {
            int32_t idx = 0;
            std::shared_ptr<cFieldData> fd;
            if (!doc.FindPseudo(name.bytes, idx, fd)) return std::nullopt;
            return std::make_tuple(idx, fd);
          },
          py::arg("FieldName"), "As Find() over PseudoFields.")
      .def(
          "Copy",
          [](const cDocumentData& doc) {
            std::shared_ptr<cDocumentData> target;
            doc.Copy(target);
            return target;
          },
          "A copy into a new document; its items point to the copy.")
      .def("Purge", &cDocumentData::Purge,
           "Removes every field and pseudo field and clears the end marks.")
      .def("UpdateLineHeaders", &cDocumentData::UpdateLineHeaders,
           py::arg("objProfile"), py::arg("objTemplate"),
           "Appends one line header per profile header type, with the "
           "template's overrides.");
}

}  // namespace

void BindFiles(py::module_& m) {
  BindProfile(m);
  BindTemplate(m);
  BindDocument(m);
}

}  // namespace pelinor::python
