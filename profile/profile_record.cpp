// Capture profiles: the record form of the profile settings file (versions
// before 0.91), read and written as one double-quoted item per line.
//
// Format: see docs/formats/profile.md.

#include <memory>
#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/profile.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

namespace pelinor {
namespace {

constexpr char kIncorrectParameter[] =
    "Error reading profile settings file. Incorrect parameter";

}  // namespace

bool cProfile::ReadRecordForm(float ver, const std::string& strVer,
                              const std::string& FileName,
                              std::string& strErrMsg) {
  TextReader reader;
  if (!reader.Open(FileName)) {
    strErrMsg = "Cannot open file " + FileName;
    return false;
  }
  std::string line;
  reader.ReadItem(line);  // the version line, already parsed
  // Files older than 0.901 end before their field count.
  const int wanted = ver >= 0.901f ? 4 : 3;
  const cDataParser parser;
  std::string label;
  std::string value;
  for (int counted = 0; counted < wanted;) {
    if (!reader.ReadItem(line)) {
      strErrMsg = kIncorrectParameter;
      return false;
    }
    if (!parser.SplitNameAndValue(line, label, value, ":")) continue;
    const std::string upper = UCase(label);
    if (upper == "VALIDATESCRIPT") {
      ValidateScript = value;
    } else if (upper == "EXPORTSCRIPT") {
      ExportScript = value;
    } else if (upper == "TEMPLATESCONFIG") {
      TemplateConfig = value;
    } else if (upper == "FIELDSCOUNT") {
      int32_t count = 0;
      if (!ToLong(value, count)) {
        strErrMsg = kIncorrectParameter;
        return false;
      }
      for (int32_t i = 1; i <= count; ++i) {
        auto field = std::make_shared<cFieldType>();
        if (!field->ReadSettings(i, reader, strErrMsg, strVer)) return false;
        FieldTypes.Add(std::move(field));
      }
    } else {
      continue;
    }
    ++counted;
  }
  return true;
}

bool cProfile::WriteSettings(const std::string& FileName,
                             std::string& strErrMsg) const {
  strErrMsg.clear();
  TextWriter writer;
  if (!writer.Create(FileName)) {
    strErrMsg = "Cannot create file " + FileName;
    return false;
  }
  auto discard = [&]() {
    writer.Abandon();
    DeleteFileQuietly(FileName);
    return false;
  };
  writer.WriteItems({kVersionLine});
  writer.WriteItems({"ValidateScript:" + ValidateScript});
  writer.WriteItems({"ExportScript:" + ExportScript});
  writer.WriteItems({"TemplatesConfig:" + TemplateConfig});
  writer.WriteItems({"FieldsCount:" + NumberText(FieldTypes.Count())});
  for (int32_t i = 1; i <= FieldTypes.Count(); ++i) {
    const auto& field = FieldTypes.Item(i);
    if (field == nullptr) {
      strErrMsg = "Error writing to profile settings file, field section. ";
      return discard();
    }
    if (!field->WriteSettings(i, writer, strErrMsg)) return discard();
  }
  if (!writer.Commit()) {
    strErrMsg = "Error writing to profile settings file. ";
    DeleteFileQuietly(FileName);
    return false;
  }
  return true;
}

}  // namespace pelinor
