// Line tables of the template file: the table and column lines.
//
// Format: see docs/formats/template.md.

#include "pelinor/table_extract.h"

#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/extract_zone.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"
#include "template/record_io.h"

namespace pelinor {
namespace {

// A failed write is reported with an error number and its description.
constexpr char kWriteFault[] = "57 Device I/O error";

// Reads a whole line and converts its value to an integer.
bool ReadLongLine(TextReader& in, int32_t& value) {
  std::string text;
  return template_io::ReadSplitLine(in, text) && ToLong(text, value);
}

}  // namespace

std::string LocationText(int32_t location) {
  switch (location) {
    case kLocationFront:
      return "FRONT";
    case kLocationBack:
      return "BACK";
    case kLocationAll:
      return "ALL";
    case kLocationMid:
      return "MID";
    default:
      return NumberText(location);
  }
}

bool ParseLocation(const std::string& text, int32_t& location) {
  if (IsNumeric(text)) return ToLong(text, location);
  const std::string word = UCase(text);
  if (word == "FRONT") {
    location = kLocationFront;
  } else if (word == "BACK") {
    location = kLocationBack;
  } else if (word == "ALL") {
    location = kLocationAll;
  } else if (word == "MID") {
    location = kLocationMid;
  } else {
    return false;
  }
  return true;
}

void ParseAnchorValue(const std::string& value,
                      Collection<std::shared_ptr<cAnchorRef>>& anchors) {
  if (value.empty()) return;
  if (value.find(':') == std::string::npos) {
    auto anchor = std::make_shared<cAnchorRef>();
    anchor->Name = value;
    anchors.Add(anchor);
    return;
  }
  std::string name, x, y;
  cDataParser().SplitTriplet(value, name, x, y, ":");
  auto anchor = std::make_shared<cAnchorRef>();
  if (!ToLong(x, anchor->XOffset) || !ToLong(y, anchor->YOffset)) return;
  anchor->Name = name;
  anchors.Add(anchor);
}

std::string AnchorValue(
    const Collection<std::shared_ptr<cAnchorRef>>& anchors) {
  const auto& first = anchors.Item(1);
  if (first == nullptr) return "";
  return first->Name + ":" + NumberText(first->XOffset) + ":" +
         NumberText(first->YOffset);
}

bool cColumnExtract::WriteSettings(TextWriter& hFile, int32_t tabidx,
                                   int32_t colidx,
                                   std::string& strErrMsg) const {
  strErrMsg.clear();
  const std::string prefix =
      "Table" + NumberText(tabidx) + "Col" + NumberText(colidx);
  hFile.WriteLine(prefix + "Left:" + NumberText(Left));
  hFile.WriteLine(prefix + "Width:" + NumberText(Width));
  hFile.WriteLine(prefix + "Name:" + Name);
  if (!hFile.ok()) {
    strErrMsg = std::string(
                    "Error writing to template file, line level columns "
                    "section. ") +
                kWriteFault;
    return false;
  }
  return true;
}

bool cColumnExtract::ReadSettings(TextReader& hFile, std::string& strErrMsg) {
  strErrMsg.clear();
  if (!ReadLongLine(hFile, Left) || !ReadLongLine(hFile, Width) ||
      !template_io::ReadSplitLine(hFile, Name)) {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  }
  return true;
}

void cColumnExtract::Copy(std::shared_ptr<cColumnExtract>& Target) const {
  if (Target == nullptr) Target = std::make_shared<cColumnExtract>();
  *Target = *this;
}

std::shared_ptr<cColumnExtract> cTableExtract::CreateColumn() {
  auto column = std::make_shared<cColumnExtract>();
  Columns.Add(column);
  return column;
}

std::shared_ptr<cAnchorRef> cTableExtract::CreateTopAnchorRef() {
  auto anchor = std::make_shared<cAnchorRef>();
  TopAnchorRefs.Add(anchor);
  return anchor;
}

std::shared_ptr<cAnchorRef> cTableExtract::CreateBottomAnchorRef() {
  auto anchor = std::make_shared<cAnchorRef>();
  BottomAnchorRefs.Add(anchor);
  return anchor;
}

void cTableExtract::Copy(std::shared_ptr<cTableExtract>& Target) const {
  if (Target == nullptr) Target = std::make_shared<cTableExtract>();
  cTableExtract& t = *Target;
  t.Left = Left;
  t.Top = Top;
  t.Width = Width;
  t.Height = Height;
  t.Location = Location;
  t.TopAnchorRef = TopAnchorRef;
  t.BottomAnchorRef = BottomAnchorRef;
  t.PageExtract = PageExtract;
  t.SheetNo = SheetNo;
  t.IgnorePages = IgnorePages;
  auto anchor = [](const cAnchorRef& a) { return a.CreateNew(); };
  t.TopAnchorRefs = CopyEach(TopAnchorRefs, anchor);
  t.BottomAnchorRefs = CopyEach(BottomAnchorRefs, anchor);
  t.Columns = CopyEach(Columns, [](const cColumnExtract& c) {
    std::shared_ptr<cColumnExtract> copy;
    c.Copy(copy);
    return copy;
  });
}

bool cTableExtract::WriteSettings(TextWriter& hFile, int32_t tabidx,
                                  std::string& strErrMsg) const {
  strErrMsg.clear();
  const std::string prefix = "Table" + NumberText(tabidx);
  hFile.WriteLine(prefix + "Left:" + NumberText(Left));
  hFile.WriteLine(prefix + "Top:" + NumberText(Top));
  hFile.WriteLine(prefix + "Width:" + NumberText(Width));
  hFile.WriteLine(prefix + "Height:" + NumberText(Height));
  hFile.WriteLine(prefix + "TopAnchorRef:" + AnchorValue(TopAnchorRefs));
  hFile.WriteLine(prefix + "BottomAnchorRef:" + AnchorValue(BottomAnchorRefs));
  hFile.WriteLine(prefix + "Location:" + LocationText(Location));
  hFile.WriteLine(prefix + "PageExtract:" + NumberText(PageExtract));
  hFile.WriteLine(prefix +
                  "IgnorePagesCount:" + NumberText(IgnorePages.Count()));
  int32_t n = 0;
  for (int32_t page : IgnorePages) {
    hFile.WriteLine(prefix + "IgnorePage " + NumberText(++n) + ":" +
                    NumberText(page));
  }
  hFile.WriteLine(prefix + "SheetNo:" + NumberText(SheetNo));
  hFile.WriteLine(prefix + "ColsCount:" + NumberText(Columns.Count()));
  if (!hFile.ok()) {
    strErrMsg = std::string(
                    "Error writing to template file, line level table "
                    "section. ") +
                kWriteFault;
    return false;
  }
  int32_t c = 0;
  for (const auto& column : Columns) {
    ++c;
    const cColumnExtract empty;
    if (!(column != nullptr ? *column : empty)
             .WriteSettings(hFile, tabidx, c, strErrMsg)) {
      return false;
    }
  }
  return true;
}

bool cTableExtract::ReadSettings(TextReader& hFile, std::string& strErrMsg,
                                 const std::string& strVer) {
  float ver = 0;
  if (!ParseVersionNumber(strVer, ver)) {
    strErrMsg = "Invalid version number";
    return false;
  }
  strErrMsg.clear();
  auto fail = [&strErrMsg]() {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  };
  for (int32_t* target : {&Left, &Top, &Width, &Height}) {
    if (!ReadLongLine(hFile, *target)) return fail();
  }
  std::string value;
  if (!template_io::ReadSplitLine(hFile, value)) return fail();
  ParseAnchorValue(value, TopAnchorRefs);
  if (!template_io::ReadSplitLine(hFile, value)) return fail();
  ParseAnchorValue(value, BottomAnchorRefs);
  if (!template_io::ReadSplitLine(hFile, value) ||
      !ParseLocation(value, Location)) {
    return fail();
  }
  if (ver >= 0.923f) {
    int32_t count = 0;
    if (!ReadLongLine(hFile, PageExtract) || !ReadLongLine(hFile, count)) {
      return fail();
    }
    for (int32_t i = 0; i < count; ++i) {
      int32_t page = 0;
      if (!ReadLongLine(hFile, page)) return fail();
      IgnorePages.Add(page);
    }
  }
  if (ver >= 0.924f && !ReadLongLine(hFile, SheetNo)) return fail();
  int32_t columns = 0;
  if (!ReadLongLine(hFile, columns)) return fail();
  for (int32_t i = 0; i < columns; ++i) {
    auto column = std::make_shared<cColumnExtract>();
    if (!column->ReadSettings(hFile, strErrMsg)) return false;
    Columns.Add(column);
  }
  return true;
}

}  // namespace pelinor
