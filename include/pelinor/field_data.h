// cFieldData: one extracted field of a document, with the resolution of
// its data type, data location and pattern over field, template and
// profile, its validation and formatting, and its tag-file records.
//
// Format: the field records of the document tag file, see
// docs/formats/document.md ("Field records").
//
// Resolution happens at every read: nothing is cached, so a new profile
// or template on the document takes effect at once. Reading a tag file
// stores the resolved type and location in the explicit members, which
// freezes them.
//
// Ownership: a field owns its option items; it points to its document
// with a std::weak_ptr.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_FIELD_DATA_H_
#define PELINOR_FIELD_DATA_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/extract_zone.h"
#include "pelinor/field_type.h"
#include "pelinor/line_data.h"
#include "pelinor/repair_trace.h"
#include "pelinor/text_file.h"

namespace pelinor {

class cDocumentData;

inline constexpr char kNotValidatedMessage[] = "Tag has not been validated";

class cFieldData {
 public:
  std::weak_ptr<cDocumentData> Document;
  std::string Name;
  std::string value;
  int32_t Status = 1;
  std::string StatusMessage = kNotValidatedMessage;
  Collection<std::shared_ptr<cOptionItem>> OptionItems;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t DataEntryType = 0;

  // DataType()
  //
  // The explicit data type when not 0, else DefaultDataType().
  int32_t DataType() const;
  void DataType(int32_t v) { data_type_ = v; }

  // ExplicitDataType()
  //
  // The data type stored with the field itself; 0 when it follows the
  // template and profile.
  int32_t ExplicitDataType() const { return data_type_; }

  // DataLocation()
  //
  // The explicit data location when not 0, else DefaultDataLocation().
  int32_t DataLocation() const;
  void DataLocation(int32_t v) { data_location_ = v; }

  // DefaultDataType()
  //
  // 0 without a profile field type; the template's override when it is
  // set and compatible with the profile type (same group; types 1 and 5
  // never change); the profile type otherwise.
  int32_t DefaultDataType() const;

  // DefaultDataLocation()
  //
  // 0 without a profile field type; the template's override when set and
  // neither location is one of -2..-5; the profile location otherwise.
  int32_t DefaultDataLocation() const;

  // GetDefault()
  //
  // The profile field type's Default text, or "".
  std::string GetDefault() const;

  // ExtractionZonesRef()
  //
  // The template's zone set for Name, or nullptr.
  std::shared_ptr<cExtractZones> ExtractionZonesRef() const;

  // The template level (-100 / kUseDefaultProperty without a zone set) and
  // the profile level (0 / "" without a field type).
  int32_t TemplateDataType() const;
  int32_t TemplateDataLocation() const;
  int32_t TemplatePtnMode() const;
  std::string TemplatePattern() const;
  int32_t ProfileDataType() const;
  int32_t ProfileDataLocation() const;
  int32_t ProfilePtnMode() const;
  std::string ProfilePattern() const;

  // Pattern()
  //
  // The template pattern unless it is kUseDefaultProperty, else the
  // profile pattern.
  std::string Pattern() const;

  // PinResolution()
  // UnpinResolution()
  //
  // While pinned, DataType(), DefaultDataType() and Pattern() answer what
  // they resolved to when pinned, without looking at the profile and the
  // template again: for a caller that checks and cleans the value in
  // several steps while neither changes. Setting DataType() while pinned
  // is seen at once. A copy of the field is not pinned.
  // ResolutionPinned() says whether the field is pinned now.
  void PinResolution();
  void UnpinResolution() { pin_.on = false; }
  bool ResolutionPinned() const { return pin_.on; }

  // Validate()
  //
  // Checks `value` for the resolved data type. Pattern types remove the
  // blanks from `value` whatever the answer. Never changes the status.
  bool Validate(std::string& LogFile);

  // Validate() that also adds to `trace`, when not null, how a pattern
  // check read a valid value (the blanks it removed, text it mapped).
  bool Validate(std::string& LogFile, cRepairTrace* trace);

  // FormatDataValue()
  //
  // Normalises `value` in place for the resolved data type; a failing
  // formatter leaves it as it was.
  void FormatDataValue();

  // FormatDataValue() that also adds to `trace`, when not null, the steps
  // that changed the value.
  void FormatDataValue(cRepairTrace* trace);

  // LogFormatMessage()
  //
  // Appends `strMsg` to the format log named by PELINORLOGFORMAT.
  void LogFormatMessage(std::string& strMsg) const;

  // CopyProperties()
  //
  // Copies every stored property, the explicit (unresolved) data type and
  // location and new copies of the option items into `Target`; `Document`
  // is left as it is.
  void CopyProperties(cFieldData& Target) const;

  // ResetOptionItems() / NewOptionItem()
  void ResetOptionItems() { OptionItems.Clear(); }
  std::shared_ptr<cOptionItem> NewOptionItem() const {
    return std::make_shared<cOptionItem>();
  }

  // The four record sets: field ("Field": Name, Value, Status, Message,
  // DataLocation, DataType, Coords), pseudo field ("Field": Name, Value,
  // DataLocation, Coords), line pseudo ("LLAnchor") and document-end mark
  // ("DocEndMark"): Name, DataLocation, Coords. Type and location are
  // written resolved. The writers fail with kDocTagsFieldWriteError once
  // `hFile` has failed.
  bool WriteSettings(int32_t TagIdx, TextWriter& hFile,
                     std::string& strErrMsg) const;
  bool WritePseudoSettings(int32_t TagIdx, TextWriter& hFile,
                           std::string& strErrMsg) const;
  bool WriteLinePseudoSettings(int32_t TagIdx, TextWriter& hFile,
                               std::string& strErrMsg) const;
  bool WriteDocEndMarkSettings(int32_t TagIdx, TextWriter& hFile,
                               std::string& strErrMsg) const;

  // The readers are positional; DataLocation is read from version 0.901
  // on, DataType from 0.936 on, Coords from 0.917 on. They fail with
  // kInvalidVersionError or kDocTagsReadError; what was read stays set.
  bool ReadSettings(int32_t TagIdx, TextReader& hFile, std::string& strErrMsg,
                    const std::string& strVer);
  bool ReadPseudoSettings(int32_t TagIdx, TextReader& hFile,
                          std::string& strErrMsg, const std::string& strVer);
  bool ReadLinePseudoSettings(int32_t TagIdx, TextReader& hFile,
                              std::string& strErrMsg,
                              const std::string& strVer);
  bool ReadDocEndMarkSettings(int32_t TagIdx, TextReader& hFile,
                              std::string& strErrMsg,
                              const std::string& strVer);

 private:
  void WriteRecords(const char* prefix, int32_t TagIdx, TextWriter& hFile,
                    bool value_lines, bool status_lines, bool type_line) const;
  bool ReadRecords(TextReader& hFile, std::string& strErrMsg,
                   const std::string& strVer, bool value_lines,
                   bool status_lines, bool type_line);

  int32_t data_type_ = 0;
  int32_t data_location_ = 0;

  // What PinResolution() found.
  struct Pin {
    bool on = false;
    int32_t default_type = 0;  // DefaultDataType()
    std::string pattern;       // Pattern()
    Pin() = default;
    Pin(const Pin&) {}
    Pin& operator=(const Pin&) {
      on = false;
      return *this;
    }
  };
  Pin pin_;
};

// DataTypesCompatible()
//
// Whether a template may override profile data type `p` with `t`.
bool DataTypesCompatible(int32_t p, int32_t t);

}  // namespace pelinor

#endif  // PELINOR_FIELD_DATA_H_
