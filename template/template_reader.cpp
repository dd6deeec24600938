// The template file reader: the version-gated groups of lines, in order,
// and the marker files beside the template.
//
// Format: see docs/formats/template.md.

#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/template.h"
#include "template/record_io.h"

namespace pelinor {

bool cTemplate::ReadSettings(const std::string& FileName,
                             std::string& strErrMsg) {
  strErrMsg.clear();
  if (!FileExists(FileName)) {
    strErrMsg = "Cannot find file " + FileName;
    return false;
  }
  TextReader in;
  if (!in.Open(FileName)) {
    strErrMsg = "Cannot open file " + FileName;
    return false;
  }
  // An empty file reads as an empty version text.
  std::string version_text;
  in.ReadFirstItem(version_text);
  float ver = 0;
  if (!ParseVersionNumber(version_text, ver)) {
    strErrMsg = "Invalid version number";
    return false;
  }
  Version = NumberText(ver);
  if (!ReadBody(in, ver, version_text, strErrMsg)) return false;
  in.Close();
  ApplyMarkerFiles(FileName);
  return true;
}

bool cTemplate::ReadBody(TextReader& in, float ver, const std::string& strVer,
                         std::string& strErrMsg) {
  using template_io::ReadLabelledLong;
  using template_io::ReadSplitItem;
  using template_io::ReadSplitLine;
  auto fail = [&strErrMsg]() {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  };
  std::string value;
  int32_t number = 0;
  // A setter of an inheriting property, fed from one labelled integer.
  auto read_own = [&](void (cTemplate::*set)(int32_t)) {
    if (!ReadLabelledLong(in, number)) return false;
    (this->*set)(number);
    return true;
  };

  if (!in.ReadFirstItem(TemplateIdentifier)) return fail();
  if (ver >= 0.914f) {
    if (!in.ReadFirstItem(value)) return fail();
    TemplateDisambiguatedID = value.empty() ? "0" : value;
  }
  if (!in.ReadLine(ScannerProfile) || !in.ReadLine(PelinorProfile)) {
    return fail();
  }
  if (ver >= 0.912f) {
    if (!ReadSplitItem(in, TemplateIDDatumX) ||
        !ReadSplitItem(in, TemplateIDDatumY)) {
      return fail();
    }
  }
  if (ver >= 0.911f && !ReadSplitLine(in, UserData)) return fail();
  if (ver >= 0.915f && !ReadLabelledLong(in, UserDataPrimary)) return fail();
  if (ver >= 0.913f && !ReadLabelledLong(in, ExtractType)) return fail();
  if (ver >= 0.914f && !ReadLabelledLong(in, Disambiguate)) return fail();
  if (ver >= 0.925f) {
    if (!read_own(&cTemplate::LineLevel) || !read_own(&cTemplate::OCRPages) ||
        !read_own(&cTemplate::FlattenDuplex)) {
      return fail();
    }
  }
  if (ver >= 0.927f) {
    if (!ReadSplitItem(in, value)) return fail();
    ParseAnchorValue(value, DocEndMarks);
    if (!read_own(&cTemplate::DocEndMarkInclusive) ||
        !read_own(&cTemplate::DocEndMarkSideMode) ||
        !read_own(&cTemplate::ExpectedAttachments)) {
      return fail();
    }
  }
  if (ver >= 0.937f) {
    if (!ReadSplitItem(in, UserName) || !ReadSplitItem(in, TimeLastModified)) {
      return fail();
    }
  }

  int32_t count = 0;
  if (!ReadLabelledLong(in, count)) return fail();
  for (int32_t i = 1; i <= count; ++i) {
    auto entry = std::make_shared<cExtractZones>();
    entry->Template = weak_from_this();
    if (!entry->ReadSettings(i, in, strErrMsg, strVer)) return false;
    FieldZoneRefs.Add(entry);
  }
  if (ver >= 0.917f) {
    if (!ReadLabelledLong(in, count)) return fail();
    for (int32_t i = 1; i <= count; ++i) {
      auto entry = std::make_shared<cExtractZones>();
      entry->Template = weak_from_this();
      if (!entry->ReadPseudoSettings(i, in, strErrMsg, strVer)) return false;
      PseudoFieldZoneRefs.Add(entry);
    }
  }
  if (ver >= 0.921f) {
    if (!ReadLabelledLong(in, count)) return fail();
    for (int32_t i = 1; i <= count; ++i) {
      auto table = std::make_shared<cTableExtract>();
      if (!table->ReadSettings(in, strErrMsg, strVer)) return false;
      LineTables.Add(table);
    }
  }
  if (ver >= 0.929f && !ReadLineDataRules(ColLineDataRules, in, strErrMsg)) {
    return false;
  }
  // Files older than 0.93 end here.
  if (ver < 0.93f) return true;
  if (!ReadLabelledLong(in, LineDataPartition)) return fail();
  if (ver >= 0.932f) {
    if (!ReadLabelledLong(in, LineDataDiscardStart) ||
        !ReadLabelledLong(in, LineDataDiscardEnd)) {
      return fail();
    }
  }
  if (ver >= 0.935f) {
    if (!ReadSplitItem(in, value)) return fail();
    LineDataEntitySpaceMax(value);
  }
  if (ver >= 0.934f) {
    if (!ReadSplitItem(in, value)) return fail();
    LineDataRowSpaceMax(value);
  }
  if (!ReadExpressions(LineDataConditions, in, strErrMsg)) return false;
  if (ver >= 0.931f && !ReadExpressions(LineDataEndConditions, in, strErrMsg)) {
    return false;
  }
  if (ver >= 0.933f && !ReadExpressions(LineDataRptConditions, in, strErrMsg)) {
    return false;
  }
  // Files older than 0.943 end before the line headers.
  if (ver < 0.943f) return true;
  return ReadLineHeaders(in, strErrMsg);
}

bool cTemplate::ReadLineHeaders(TextReader& in, std::string& strErrMsg) {
  auto fail = [&strErrMsg]() {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  };
  int32_t count = 0;
  if (!template_io::ReadLabelledLong(in, count)) return fail();
  for (int32_t i = 0; i < count; ++i) {
    auto header = std::make_shared<cLineHdrType>();
    header->DataType = kNoOverride;
    header->Pattern = kUseDefaultProperty;
    header->PtnMode = kNoOverride;
    int32_t overrides = 0;
    if (!template_io::ReadSplitItem(in, header->Name) ||
        !template_io::ReadLabelledLong(in, overrides)) {
      return fail();
    }
    std::string line, label, value;
    const cDataParser parser;
    for (int32_t k = 0; k < overrides; ++k) {
      if (!in.ReadFirstItem(line) ||
          !parser.SplitNameAndValue(line, label, value, ":")) {
        return fail();
      }
      // The order matters: "PatternMode" also contains "Pattern".
      if (label.find("Type") != std::string::npos) {
        if (!ToLong(value, header->DataType)) return fail();
      } else if (label.find("PatternMode") != std::string::npos) {
        if (!ToLong(value, header->PtnMode)) return fail();
      } else if (label.find("Pattern") != std::string::npos) {
        header->Pattern = value;
      }
    }
    LineHeaders.Add(header);
  }
  return true;
}

void cTemplate::ApplyMarkerFiles(const std::string& FileName) {
  // In this order, so that a later marker overrides an earlier one.
  if (FileExists(FileName + ".neverDA")) da_invoices_override_ = 0;
  if (FileExists(FileName + ".alwaysDA")) da_invoices_override_ = 1;
  if (FileExists(FileName + ".crm_auto")) content_reuse_override_ = 0;
  if (FileExists(FileName + ".crm_content")) content_reuse_override_ = 1;
  if (FileExists(FileName + ".crm_donotuse")) content_reuse_override_ = 2;
}

}  // namespace pelinor
