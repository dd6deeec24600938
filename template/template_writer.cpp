// The template file writer: every group of lines in the current version.
//
// Format: see docs/formats/template.md.

#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/template.h"

namespace pelinor {
namespace {

constexpr char kWriteError[] = "Error writing to template file. ";

}  // namespace

bool cTemplate::WriteSettings(const std::string& FileName,
                              std::string& strErrMsg) const {
  strErrMsg.clear();
  TextWriter out;
  if (!out.Create(FileName)) {
    strErrMsg = "Cannot create file " + FileName;
    return false;
  }
  // No file is left behind a failed write, not even an older one.
  auto discard = [&]() {
    if (strErrMsg.empty()) strErrMsg = kWriteError;
    out.Abandon();
    DeleteFileQuietly(FileName);
    return false;
  };
  const auto n = [](int32_t v) { return NumberText(v); };
  out.WriteLine(kVersionLine);
  out.WriteLine(TemplateIdentifier);
  out.WriteLine(TemplateDisambiguatedID);
  out.WriteLine(ScannerProfile);
  out.WriteLine(PelinorProfile);
  out.WriteLine("TemplateIDDatumX:" + TemplateIDDatumX);
  out.WriteLine("TemplateIDDatumY:" + TemplateIDDatumY);
  out.WriteLine("UserData:" + UserData);
  out.WriteLine("UserDataPrimary:" + n(UserDataPrimary));
  out.WriteLine("ExtractType:" + n(ExtractType));
  out.WriteLine("Disambiguate:" + n(Disambiguate));
  out.WriteLine("LineLevel:" + n(line_level_.value));
  out.WriteLine("OCRAllPages:" + n(ocr_pages_.value));
  out.WriteLine("FlattenDuplex:" + n(flatten_duplex_.value));
  out.WriteLine("DocEndMark:" + AnchorValue(DocEndMarks));
  out.WriteLine("DocEndMarkInclusive:" + n(doc_end_mark_inclusive_.value));
  out.WriteLine("DocEndMarkSideMode:" + n(doc_end_mark_side_mode_.value));
  out.WriteLine("ExpectedAttachments:" + n(expected_attachments_.value));
  out.WriteLine("User:" + UserName);
  out.WriteLine("LastModified:" + TimeLastModified);

  out.WriteLine("FieldCount:" + n(FieldZoneRefs.Count()));
  int32_t i = 0;
  for (const auto& entry : FieldZoneRefs) {
    if (entry == nullptr || !entry->WriteSettings(++i, out, strErrMsg)) {
      return discard();
    }
  }
  out.WriteLine("PseudoFieldCount:" + n(PseudoFieldZoneRefs.Count()));
  i = 0;
  for (const auto& entry : PseudoFieldZoneRefs) {
    if (entry == nullptr || !entry->WritePseudoSettings(++i, out, strErrMsg)) {
      return discard();
    }
  }
  out.WriteLine("LineTableCount:" + n(LineTables.Count()));
  i = 0;
  for (const auto& table : LineTables) {
    if (table == nullptr || !table->WriteSettings(out, ++i, strErrMsg)) {
      return discard();
    }
  }
  if (!WriteLineDataRules(ColLineDataRules, out, strErrMsg)) return discard();
  out.WriteLine("LineDataPartition:" + n(LineDataPartition));
  out.WriteLine("LineDataDiscardStart:" + n(LineDataDiscardStart));
  out.WriteLine("LineDataDiscardEnd:" + n(LineDataDiscardEnd));
  out.WriteLine("LineDataEntitySpaceMax:" + line_data_entity_space_max_.value);
  out.WriteLine("LineDataRowSpaceMax:" + line_data_row_space_max_.value);
  if (!WriteExpressions("LineLevelStartExpr:", LineDataConditions, out,
                        strErrMsg) ||
      !WriteExpressions("LineLevelEndExpr:", LineDataEndConditions, out,
                        strErrMsg) ||
      !WriteExpressions("LineLevelRptExpr:", LineDataRptConditions, out,
                        strErrMsg)) {
    return discard();
  }

  out.WriteLine("LineHeaderCount:" + n(LineHeaders.Count()));
  i = 0;
  for (const auto& header : LineHeaders) {
    if (header == nullptr) return discard();
    const std::string prefix = "LineHeader" + n(++i);
    const bool type = header->DataType != kNoOverride;
    const bool pattern = header->Pattern != kUseDefaultProperty;
    const bool mode = header->PtnMode != kNoOverride;
    out.WriteLine(prefix + "Name:" + header->Name);
    out.WriteLine(prefix + "OverrideCount:" +
                  n((type ? 1 : 0) + (pattern ? 1 : 0) + (mode ? 1 : 0)));
    if (type) out.WriteLine(prefix + "DataType:" + n(header->DataType));
    if (pattern) out.WriteLine(prefix + "Pattern:" + header->Pattern);
    if (mode) out.WriteLine(prefix + "PatternMode:" + n(header->PtnMode));
  }
  if (!out.Commit()) {
    strErrMsg = kWriteError;
    DeleteFileQuietly(FileName);
    return false;
  }
  return true;
}

}  // namespace pelinor
