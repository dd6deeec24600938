// Template detection configuration: cTpDetectTypes, the whole settings
// file, and cTpDetectType, one identifier type ("TYPE"n section).
//
// Format: see docs/formats/detection-and-scan.md.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_TP_DETECT_TYPE_H_
#define PELINOR_TP_DETECT_TYPE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/ini_file.h"

namespace pelinor {

// cTpDetectType: how one kind of identifier is found on a page. Its
// properties are read-only; ReadIniSettings() sets them.
class cTpDetectType {
 public:
  // ReadIniSettings()
  //
  // Reads section `strSection` of `FileName` through `IniFile`. The type is
  // the digits ending the section name; without them `strErrMsg` becomes
  // "Reading template detection config. Invalid type." and the read fails.
  // A missing "Format" fails with "Reading template detection config. " +
  // "Unable to find format. " + the earlier text of `strErrMsg`.
  // "MinLength" (default 5) below zero becomes 5; "MaxLength" (default 9)
  // below the minimum becomes the minimum; "DistanceConst" (default 100)
  // is read only for format "256". `strVer` is accepted and not needed.
  bool ReadIniSettings(const std::string& strSection, cIniFile& IniFile,
                       const std::string& FileName, std::string& strErrMsg,
                       const std::string& strVer);

  const std::string& TemplateType() const { return template_type_; }
  const std::string& DisplayName() const { return display_name_; }
  // "256" is the floating-distance format.
  const std::string& Format() const { return format_; }
  int32_t Locate() const { return locate_; }
  int32_t FloatDistanceConst() const { return float_distance_const_; }
  const std::string& Country() const { return country_; }
  const std::string& CountryFormat() const { return country_format_; }
  int32_t MinDigits() const { return min_digits_; }
  int32_t MaxDigits() const { return max_digits_; }
  const std::string& DelimsAllowed() const { return delims_allowed_; }
  // True when "SuppressSpaces" is "1" or "TRUE" in any letter case.
  bool SpacesAllowed() const { return spaces_allowed_; }
  const Collection<std::string>& SearchStrings() const {
    return search_strings_;
  }

 private:
  std::string template_type_;
  std::string display_name_;
  std::string format_;
  int32_t locate_ = 0;
  int32_t float_distance_const_ = 0;
  std::string country_;
  std::string country_format_;
  int32_t min_digits_ = 0;
  int32_t max_digits_ = 0;
  std::string delims_allowed_;
  bool spaces_allowed_ = false;
  Collection<std::string> search_strings_;
};

class cTpDetectTypes {
 public:
  Collection<std::shared_ptr<cTpDetectType>> Types;  // file order, no keys
  Collection<std::string> Discard;
  int32_t Validate = 0;
  std::string SkipFirstNoPages;

  // ReadSettings()
  //
  // Reads the detection configuration `FileName`: the "MAIN" section when
  // present, then the contiguous "TYPE1", "TYPE2", ... sections and finally
  // "TYPE256" when present, appending one type per section to `Types`.
  // Clears `strErrMsg`. Fails with "Cannot find file " + name when the
  // file does not exist, and with the message of a type that fails to
  // read; the types read before stay.
  bool ReadSettings(const std::string& FileName, std::string& strErrMsg);
};

}  // namespace pelinor

#endif  // PELINOR_TP_DETECT_TYPE_H_
