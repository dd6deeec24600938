// cTemplate: one document layout of a capture profile: how the layout is
// identified, its field and pseudo-field entries, document-end marks, line
// tables with their rules and conditions, line-header overrides and a few
// document-handling switches that default to the profile's.
//
// Format: see docs/formats/template.md.
//
// The template file is a versioned sequence of lines read strictly in
// order; each group is present only from a given file version on.
// WriteSettings() always writes the current version ("ver0.946"), so
// reading an older file and writing it again moves it forward.
//
// Inheriting properties: until the template has its own value (assigned,
// or read from a file that holds it), DocEndMarkInclusive,
// DocEndMarkSideMode, ExpectedAttachments, FlattenDuplex, OCRPages,
// LineLevel, LineDataRowSpaceMax and LineDataEntitySpaceMax read the
// profile's value, or 0 / "" without a profile.
//
// Marker files: after a successful read, empty files named as the
// template file plus ".neverDA", ".alwaysDA", ".crm_auto", ".crm_content"
// or ".crm_donotuse" set DAInvoicesOverride and ContentReuseOverride; a
// later one in that order overrides an earlier.
//
// Ownership: the template owns every entry, table, rule, condition, mark
// and header through std::shared_ptr; entries point back to it with a
// std::weak_ptr. `Profile` is shared, not owned. ReadSettings() adds to
// the collections a template already holds; call Purge() and
// PurgeTplLineTables() first to reuse an object.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_TEMPLATE_H_
#define PELINOR_TEMPLATE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/anchor_ref.h"
#include "pelinor/collection.h"
#include "pelinor/extract_zone.h"
#include "pelinor/line_data_rules.h"
#include "pelinor/line_hdr_type.h"
#include "pelinor/profile.h"
#include "pelinor/table_extract.h"

namespace pelinor {

class cTemplate : public std::enable_shared_from_this<cTemplate> {
  struct PrivateTag {
    explicit PrivateTag() = default;
  };

 public:
  // New()
  //
  // Makes an empty template. Its children point back to it through
  // std::weak_ptr, so a template exists only behind std::shared_ptr: it
  // cannot be made on the stack or copied.
  static std::shared_ptr<cTemplate> New() {
    return std::make_shared<cTemplate>(PrivateTag{});
  }
  explicit cTemplate(PrivateTag) {}
  cTemplate(const cTemplate&) = delete;
  cTemplate& operator=(const cTemplate&) = delete;

  Collection<std::shared_ptr<cLineHdrType>> LineHeaders;
  std::string Version;  // the version of the file read, as decimal text
  std::shared_ptr<cProfile> Profile;  // source of inherited values
  std::string ScannerProfile;
  std::string PelinorProfile;
  std::string UserName;
  std::string TimeLastModified;
  std::string TemplateIdentifier;
  std::string TemplateDisambiguatedID = "0";
  std::string TemplateIDDatumX;
  std::string TemplateIDDatumY;
  std::string UserData;
  int32_t UserDataPrimary = 0;
  int32_t ExtractType = 0;
  int32_t Disambiguate = 0;
  Collection<std::shared_ptr<cExtractZones>> FieldZoneRefs;
  Collection<std::shared_ptr<cExtractZones>> PseudoFieldZoneRefs;
  Collection<std::shared_ptr<cTableExtract>> LineTables;
  Collection<std::shared_ptr<cAnchorRef>> DocEndMarks;
  LineDataRulesList ColLineDataRules;
  ExpressionList LineDataConditions;
  ExpressionList LineDataEndConditions;
  ExpressionList LineDataRptConditions;
  int32_t LineDataPartition = 0;
  int32_t LineDataDiscardStart = 0;
  int32_t LineDataDiscardEnd = 0;
  std::string LineDataVertAlignTol = "0";  // not stored in the file

  // dtTimeLastModified()
  //
  // TimeLastModified as a serial date when it is a valid date text, else
  // the zero date.
  double dtTimeLastModified() const;

  // The inheriting properties; see the file comment.
  int32_t DocEndMarkInclusive() const;
  void DocEndMarkInclusive(int32_t value);
  int32_t DocEndMarkSideMode() const;
  void DocEndMarkSideMode(int32_t value);
  int32_t ExpectedAttachments() const;
  void ExpectedAttachments(int32_t value);
  int32_t FlattenDuplex() const;
  void FlattenDuplex(int32_t value);
  int32_t OCRPages() const;
  void OCRPages(int32_t value);
  int32_t LineLevel() const;
  void LineLevel(int32_t value);
  std::string LineDataRowSpaceMax() const;
  void LineDataRowSpaceMax(const std::string& value);
  std::string LineDataEntitySpaceMax() const;
  void LineDataEntitySpaceMax(const std::string& value);

  // DAInvoicesOverride()
  //
  // From the marker files: -1 none, 0 ".neverDA", 1 ".alwaysDA".
  int16_t DAInvoicesOverride() const { return da_invoices_override_; }

  // ContentReuseOverride()
  //
  // From the marker files: -1 none, 0 ".crm_auto", 1 ".crm_content",
  // 2 ".crm_donotuse".
  int16_t ContentReuseOverride() const { return content_reuse_override_; }

  // WriteSettings()
  //
  // Writes the template file `FileName` in the current version. Clears
  // `strErrMsg`. When the file cannot be created returns false with
  // "Cannot create file " + name; when a part fails to write, returns
  // false with its message and no file is left at `FileName`.
  bool WriteSettings(const std::string& FileName, std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads the template file `FileName` of any version, adding to the
  // collections, then applies the marker files. Clears `strErrMsg`.
  // Failures: "Cannot find file " + name, "Invalid version number",
  // "Error reading template file. Incorrect parameter" or the message of
  // a failing entry, table or condition; what was read stays set.
  bool ReadSettings(const std::string& FileName, std::string& strErrMsg);

  // FindFieldZones() / FindPseudoFieldZones()
  //
  // The first entry of FieldZoneRefs (PseudoFieldZoneRefs) whose FieldName
  // equals `strFieldName` ignoring case. False, `FieldZones` untouched,
  // when there is none.
  bool FindFieldZones(const std::string& strFieldName,
                      std::shared_ptr<cExtractZones>& FieldZones) const;
  bool FindPseudoFieldZones(const std::string& strFieldName,
                            std::shared_ptr<cExtractZones>& FieldZones) const;

  // FindLineHeaders()
  //
  // As FindFieldZones() over LineHeaders by Name.
  bool FindLineHeaders(const std::string& strName,
                       std::shared_ptr<cLineHdrType>& LineHeader) const;

  // The Create...() methods make a new item, append it to the matching
  // collection and return it. Entries point back to this template when it
  // is held by a std::shared_ptr. A new line header carries no overrides
  // (data type and pattern mode -100, pattern kUseDefaultProperty).
  std::shared_ptr<cExtractZones> CreateExtractZones();
  std::shared_ptr<cExtractZones> CreatePseudoExtractZones();
  std::shared_ptr<cLineHdrType> CreateLineHeader();
  std::shared_ptr<cTableExtract> CreateLineTable();
  std::shared_ptr<cAnchorRef> CreateDocEndMark();
  std::shared_ptr<cLineDataRules> CreateLineDataRules();
  std::shared_ptr<cExpression> CreateLineDataCondition();
  std::shared_ptr<cExpression> CreateLineDataEndCondition();
  std::shared_ptr<cExpression> CreateLineDataRptCondition();

  // Copy()
  //
  // A deep copy into `Target`, created when empty: every value, the own
  // values of the inheriting properties, the marker results, and new
  // copies of every collection member. Profile is shared. Copied entries
  // point back to `Target`.
  void Copy(std::shared_ptr<cTemplate>& Target) const;

  // Purge()
  //
  // Empties FieldZoneRefs, PseudoFieldZoneRefs, DocEndMarks,
  // ColLineDataRules, the three condition collections and LineHeaders.
  void Purge();

  // PurgeTplLineTables()
  //
  // Empties LineTables.
  void PurgeTplLineTables();

 private:
  // An inheriting value: the template's own once `own` is set.
  template <typename T>
  struct Inherited {
    T value{};
    bool own = false;
  };

  bool ReadBody(TextReader& in, float ver, const std::string& strVer,
                std::string& strErrMsg);
  bool ReadLineHeaders(TextReader& in, std::string& strErrMsg);
  void ApplyMarkerFiles(const std::string& FileName);
  int32_t Resolve(const Inherited<int32_t>& v, int32_t cProfile::*field) const;
  std::string Resolve(const Inherited<std::string>& v,
                      std::string cProfile::*field) const;

  Inherited<int32_t> doc_end_mark_inclusive_;
  Inherited<int32_t> doc_end_mark_side_mode_;
  Inherited<int32_t> expected_attachments_;
  Inherited<int32_t> flatten_duplex_;
  Inherited<int32_t> ocr_pages_;
  Inherited<int32_t> line_level_;
  Inherited<std::string> line_data_row_space_max_{"70"};
  Inherited<std::string> line_data_entity_space_max_{"100"};
  int16_t da_invoices_override_ = -1;
  int16_t content_reuse_override_ = -1;
};

}  // namespace pelinor

#endif  // PELINOR_TEMPLATE_H_
