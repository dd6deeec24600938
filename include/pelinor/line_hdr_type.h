// cLineHdrType: one line-item header type of a capture profile: the name,
// caption, data type and pattern of one column of line-level data.
//
// Format: see docs/formats/profile.md ("LineItemHdr" sections).
//
// Header types are read from the "LineItemHdr"n sections of a profile
// settings file; documents carry copies of them and write them to their
// tag files as plain record lines.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_LINE_HDR_TYPE_H_
#define PELINOR_LINE_HDR_TYPE_H_

#include <cstdint>
#include <string>

#include "pelinor/ini_file.h"
#include "pelinor/text_file.h"

namespace pelinor {

class cLineHdrType {
 public:
  std::string Name;
  std::string DisplayName;
  int32_t DataType = 1;
  int32_t DataFlags = 0;
  int32_t InternalValidateLevel = 2;
  int32_t Hidden = 0;    // non-zero: hidden
  int32_t ReadOnly = 0;  // non-zero: read-only
  std::string Pattern;
  int32_t PtnMode = 0;           // 1 when "ApplyPatternMatch" is "1"
  int32_t PtnAllowOverride = 0;  // 1 when "AllowPatternOverride" is "1"

  // WriteSettings()
  //
  // Writes the header as five plain record lines, "LineItemHdr" + TagIdx +
  // "Name:", "DisplayName:", "Type:", "Flags:" and
  // "InternalValidateLevel:", each followed by its value. Clears
  // `strErrMsg`; on a failed write returns false with "Error writing to
  // document tags file, line item header section. ".
  bool WriteSettings(int32_t TagIdx, TextWriter& hFile,
                     std::string& strErrMsg) const;

  // ReadIniSettings()
  //
  // Fills the header from section `strSection` of the settings file
  // `FileName` through `IniFile`. The pattern flags are on exactly when
  // their value is "1". Without a non-empty "Name" sets `strErrMsg` to
  // "Reading profile. " + "Unable to find field name. " + its earlier text
  // and returns false. `strVer` is accepted and not needed.
  bool ReadIniSettings(const std::string& strSection, cIniFile& IniFile,
                       const std::string& FileName, std::string& strErrMsg,
                       const std::string& strVer);

  // Copy()
  //
  // Copies every property into `Target`.
  void Copy(cLineHdrType& Target) const;
};

}  // namespace pelinor

#endif  // PELINOR_LINE_HDR_TYPE_H_
