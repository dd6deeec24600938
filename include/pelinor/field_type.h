// cFieldType: the profile-level definition of one capturable field.
//
// Format: see docs/formats/profile.md ("Field" sections of the settings
// form, field records of the record form).
//
// A field type is read from one "Field"n section of a profile settings
// file, and written to / read from the record form of the profile. The
// two record routines are deliberately not inverses: the writer labels the
// data location "PageNo" while the reader only accepts "Location", and the
// reader stops after four accepted lines. Templates and extraction zones
// refer to a field type by its `Name`, compared ignoring case.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_FIELD_TYPE_H_
#define PELINOR_FIELD_TYPE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/anchor_ref.h"
#include "pelinor/collection.h"
#include "pelinor/ini_file.h"
#include "pelinor/text_file.h"

namespace pelinor {

class cFieldType {
 public:
  int32_t DataType = 1;
  int32_t DataLocation = 0;  // written to record files as "PageNo"
  std::string CaptionSearch;
  Collection<std::shared_ptr<cAnchorRef>> AnchorRefs;  // file order, no keys
  int32_t Catagory = 1;  // 1: an ordinary field; anything else: pseudo
  std::string Name;
  std::string DisplayName;
  std::string Candidate;
  int32_t InternalValidateLevel = 2;
  std::string Default;
  int32_t Hidden = 0;
  std::string Pattern;
  int32_t PtnMode = 0;           // 3 when "ApplyPatternMatch" is on
  int32_t PtnAllowOverride = 0;  // 1 when a template zone may override

  // WriteSettings()
  //
  // Writes the six record lines of field number `TagIdx` to `hFile`, each
  // line as one double-quoted item: Name, DisplayName, Type, PageNo,
  // CaptionSearch and InternalValidateLevel, labelled "Field" + TagIdx +
  // word. Clears `strErrMsg`; on a failed write returns false with
  // "Error writing to profile settings file, field section. ".
  bool WriteSettings(int32_t TagIdx, TextWriter& hFile,
                     std::string& strErrMsg) const;

  // ReadIniSettings()
  //
  // Fills the field type from section `strSection` of the settings file
  // `FileName` through `IniFile`. Absent keys give their documented
  // defaults, which differ from those of a new object where the format
  // says so ("InternalValidateLevel" -100, "DisplayName" the name).
  // Without a non-empty "Name" sets `strErrMsg` to "Reading profile. " +
  // "Unable to find field name. " + its earlier text and returns false.
  // `strVer` (the file's version line) is accepted and not needed.
  bool ReadIniSettings(const std::string& strSection, cIniFile& IniFile,
                       const std::string& FileName, std::string& strErrMsg,
                       const std::string& strVer);

  // ReadSettings()
  //
  // Reads the record lines of field number `TagIdx` from `hFile`, one item
  // per line. Lines labelled "Field" + TagIdx + "Name", "DisplayName",
  // "Type" or "Location" (ignoring case) are accepted; others are skipped.
  // Stops after four accepted lines, or two when the version in `strVer`
  // is below 0.901. Fails with "Invalid version number" when `strVer`
  // cannot be parsed, and with "Error reading profile settings file.
  // Incorrect parameter" for a non-numeric type or location or a file
  // that ends early.
  bool ReadSettings(int32_t TagIdx, TextReader& hFile, std::string& strErrMsg,
                    const std::string& strVer);
};

}  // namespace pelinor

#endif  // PELINOR_FIELD_TYPE_H_
