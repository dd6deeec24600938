// cExtractZone, one rectangle in which a field's value is sought, and
// cExtractZones, a template's entry for one field: the field type it
// fills, its zones, its anchor and its overrides of the field type's data
// type, data location, pattern and pattern mode.
//
// Format: see docs/formats/template.md ("Field entries").
//
// The absence of an override is stored as a marker: kNoOverride (-100)
// for the numbers, kUseDefaultProperty for the pattern. An empty pattern
// is a real override.
//
// Ownership: an entry owns its zones and anchors through std::shared_ptr
// and points back to its template with a std::weak_ptr.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_EXTRACT_ZONE_H_
#define PELINOR_EXTRACT_ZONE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/anchor_ref.h"
#include "pelinor/collection.h"
#include "pelinor/text_file.h"

namespace pelinor {

class cTemplate;

// The marker of a numeric override that is not in force.
inline constexpr int32_t kNoOverride = -100;
// The marker of a text override that is not in force.
inline constexpr char kUseDefaultProperty[] = "##USE_DEFAULT_PROPERTY##";

// The message of every malformed template line.
inline constexpr char kTemplateIncorrectParameter[] =
    "Error reading template file. Incorrect parameter";

class cExtractZone {
 public:
  // Left() / Top() / Width() / Height()
  //
  // The coordinate as decimal text. Assigning a text stores its integer
  // value (rounded half to even); a text that is not numeric leaves the
  // coordinate as it was.
  std::string Left() const;
  void Left(const std::string& value);
  std::string Top() const;
  void Top(const std::string& value);
  std::string Width() const;
  void Width(const std::string& value);
  std::string Height() const;
  void Height(const std::string& value);

  // The stored integers, for callers that compute with them.
  int32_t LeftValue() const { return left_; }
  int32_t TopValue() const { return top_; }
  int32_t WidthValue() const { return width_; }
  int32_t HeightValue() const { return height_; }

  // WriteSettings()
  //
  // Writes the four zone lines "Field" + FieldIdx + "Zone" + ZoneIdx +
  // "Left:" / "Top:" / "Width:" / "Height:". Clears `strErrMsg`; false with
  // "Error writing to template file, field section. " when a write failed.
  bool WriteSettings(int32_t FieldIdx, int32_t ZoneIdx, TextWriter& hFile,
                     std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads four items as labelled integers into Left, Top, Width and
  // Height; labels are not compared. Clears `strErrMsg`; on a missing or
  // non-numeric item returns false with kTemplateIncorrectParameter, the
  // values read before kept.
  bool ReadSettings(int32_t FieldIdx, int32_t ZoneIdx, TextReader& hFile,
                    std::string& strErrMsg);

  // Copy()
  //
  // Copies the four values into `Target`, creating it when empty.
  void Copy(std::shared_ptr<cExtractZone>& Target) const;

 private:
  int32_t left_ = 0;
  int32_t top_ = 0;
  int32_t width_ = 0;
  int32_t height_ = 0;
};

class cExtractZones {
 public:
  std::weak_ptr<cTemplate> Template;  // the owning template, not owned
  int32_t DataTypeOverride = kNoOverride;
  // For a pseudo field this holds the data location itself.
  int32_t DataLocationOverride = kNoOverride;
  std::string FieldName;  // Name of the profile field type filled
  Collection<std::shared_ptr<cExtractZone>> Zones;  // file order, no keys
  std::string CaptionSearch;
  Collection<std::shared_ptr<cAnchorRef>> AnchorRefs;
  int32_t Catagory = 1;  // 1: ordinary field, 2: pseudo field
  int32_t AutoTemplate = 1;
  int32_t PatternModeOverride = kNoOverride;
  std::string PatternOverride = kUseDefaultProperty;

  // OverrideCount()
  //
  // The number of the four overrides not at their markers.
  int32_t OverrideCount() const;

  // WriteSettings()
  //
  // Writes the ordinary field entry number `FieldIdx`: FieldName,
  // AnchorRef (first anchor's name), OverrideCount, the overrides in force
  // (Type, Location, Pattern, PatternMode), AutoTemplate, ZoneCount and
  // the zones. Clears `strErrMsg`; false with the zone's or
  // "Error writing to template file, field section. " when a write failed.
  bool WriteSettings(int32_t FieldIdx, TextWriter& hFile,
                     std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads an ordinary field entry written by WriteSettings() into a file
  // of version `strVer` ("ver" + number): the anchor line from 0.917, the
  // overrides from 0.901, AutoTemplate from 0.939. Override lines are
  // matched by case-sensitive substrings of their labels, "Type", then
  // "Location", then "PatternMode", then "Pattern"; a line matching none
  // is counted and ignored. An anchor read here takes the first zone's
  // left and top as its offsets. Failures: "Invalid version number" or
  // kTemplateIncorrectParameter (or a zone's message); what was read
  // before stays set.
  bool ReadSettings(int32_t TagIdx, TextReader& hFile, std::string& strErrMsg,
                    const std::string& strVer);

  // WritePseudoSettings()
  //
  // Writes the pseudo field entry number `FieldIdx`: FieldName,
  // CaptionSearch, Location (DataLocationOverride), ZoneCount, the zones.
  bool WritePseudoSettings(int32_t FieldIdx, TextWriter& hFile,
                           std::string& strErrMsg) const;

  // ReadPseudoSettings()
  //
  // Reads a pseudo field entry and sets Catagory to 2. Failures as for
  // ReadSettings().
  bool ReadPseudoSettings(int32_t TagIdx, TextReader& hFile,
                          std::string& strErrMsg, const std::string& strVer);

  // Copy()
  //
  // Copies every value into `Target` (created when empty), shares
  // Template, and gives `Target` new collections holding copies of every
  // anchor and zone, in order.
  void Copy(std::shared_ptr<cExtractZones>& Target) const;

  // CreateExtractZone()
  //
  // Appends a new zone to Zones and returns it.
  std::shared_ptr<cExtractZone> CreateExtractZone();

  // CreateAnchorRef()
  //
  // Replaces AnchorRefs by a collection holding one new anchor and returns
  // it, so an entry has at most one anchor made this way.
  std::shared_ptr<cAnchorRef> CreateAnchorRef();

 private:
  bool ReadZones(int32_t TagIdx, TextReader& hFile, std::string& strErrMsg);
};

}  // namespace pelinor

#endif  // PELINOR_EXTRACT_ZONE_H_
