// cProfile: a capture profile (scripts, templates configuration,
// directories, document-handling switches, permitted users, document
// states, hold and delete reasons, field types and line-item header
// types), and cPelinorState, one user-defined document state.
//
// Format: see docs/formats/profile.md.
//
// A profile settings file comes in two forms, told apart by the version on
// its first line: the sectioned settings form (version 0.91 and later) and
// the older record form. ReadSettings() reads either; WriteSettings()
// writes the record form but stamps the current version "ver0.946", so a
// file it writes is read back through the settings form (and fails there
// for want of a "Main" section). The two are kept that way on purpose.
//
// Ownership: the profile owns its states, field types and header types
// through std::shared_ptr; they hold no pointer back to it. ReadSettings()
// adds to the collections a profile already holds; call Purge() first to
// reuse an object.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_PROFILE_H_
#define PELINOR_PROFILE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/field_type.h"
#include "pelinor/ini_file.h"
#include "pelinor/line_hdr_type.h"

namespace pelinor {

// cPelinorState: a document state of a profile with its two messages.
class cPelinorState {
 public:
  int32_t State = 0;
  std::string tbcDisplayMessage;     // shown while the state is to be completed
  std::string OnHoldDisplayMessage;  // shown while the document is on hold
};

class cProfile {
 public:
  int32_t OCREnabled = 1;
  int32_t LineLevelEnabled = 1;
  std::string TemplateDetectPages;
  Collection<std::shared_ptr<cPelinorState>> PelinorStates;
  Collection<std::string> OnHoldReasons;
  Collection<std::string> DeleteReasons;
  int32_t InvalidState = 0;  // 1 when read from a file without the key
  std::string Version;       // the file's version as a decimal number text
  int32_t DeletePrompt = 0;  // 1 when read from a file without the key
  int32_t LastClientViewMode = 0;
  std::string ValidateScript;
  std::string ExportScript;
  std::string OnEntryScript;
  std::string RejectScript;
  std::string DeleteScript;
  std::string TemplateConfig = "template.ini";
  Collection<std::shared_ptr<cFieldType>> FieldTypes;        // category 1
  Collection<std::shared_ptr<cFieldType>> PseudoFieldTypes;  // all others
  Collection<std::shared_ptr<cLineHdrType>> LineItemHdrs;
  int32_t InternalValidateLevel = 2;
  int32_t FlattenDuplex = 1;
  int32_t OCRPages = 1;  // key "OCRAllPages"
  int32_t OutputPagesText = 0;
  int32_t LineLevel = 1;
  int32_t DocEndMarkInclusive = 1;
  int32_t DocEndMarkSideMode = 0;
  int32_t ExpectedAttachments = 0;
  std::string LineDataRowSpaceMax = "70";  // key "LineDataSubRowSpaceMax"
  std::string LineDataEntitySpaceMax = "100";
  std::string Name;
  std::string DisplayName;
  std::string TemplateDir;
  Collection<std::string> Allowed;  // user names, compared case-sensitively
  std::string QueueDirRemote;
  std::string QueueDirLocal;

  // ReadSettings()
  //
  // Reads the profile settings file `FileName`. The first item of its
  // first line is the version text ("ver" and a number); a version of 0.91
  // or higher is read in the settings form, a lower one in the record
  // form. Sets `Version` and `Name` (= `ProfileName`) before reading on.
  // Clears `strErrMsg`; on failure returns false with the documented
  // message ("Invalid version number", "Reading profile. Unable to find
  // ...", "Error reading profile settings file. Incorrect parameter",
  // "Cannot find file " + name); what was read before stays set.
  bool ReadSettings(const std::string& ProfileName, const std::string& FileName,
                    std::string& strErrMsg);

  // ReadSetting()
  //
  // The "DisplayName" of section "Main" of the settings file `FileName`
  // ("" when absent), so a profile can be listed without reading it all.
  // `Section` and `Name` are accepted and not used: the answer is always
  // the display name.
  std::string ReadSetting(const std::string& FileName,
                          const std::string& Section, const std::string& Name,
                          std::string& strErrMsg) const;

  // WriteSettings()
  //
  // Writes the record form to `FileName`: the version line, the three
  // scripts/configuration lines, the field count and the records of each
  // of `FieldTypes`, every line one double-quoted item. Clears
  // `strErrMsg`. When the file cannot be created returns false with
  // "Cannot create file " + name (an existing file is left as it was);
  // when a later write fails, no file is left at `FileName`.
  bool WriteSettings(const std::string& FileName, std::string& strErrMsg) const;

  // FindField()
  //
  // The first of `FieldTypes` (pseudo field types are not searched) whose
  // `Name` equals `strFieldName` ignoring case. False, `FieldType`
  // untouched, when there is none.
  bool FindField(const std::string& strFieldName,
                 std::shared_ptr<cFieldType>& FieldType) const;

  // FindLineItemHdr()
  //
  // As FindField() over `LineItemHdrs`; `LineHdrIdx` is the one-based
  // position of the header found.
  bool FindLineItemHdr(const std::string& strLineHdrName,
                       std::shared_ptr<cLineHdrType>& LineHdrType,
                       int32_t& LineHdrIdx) const;

  // FindAllowableUser()
  //
  // True when an entry of `Allowed` equals `strName` exactly (case
  // matters).
  bool FindAllowableUser(const std::string& strName) const;

  // FileVersion()
  //
  // The library's version: major, minor and revision joined by ".".
  std::string FileVersion() const;

  // Purge()
  //
  // Empties every collection, each from its last item to its first:
  // FieldTypes (each field type's AnchorRefs first), PseudoFieldTypes
  // (likewise), LineItemHdrs, Allowed, PelinorStates, OnHoldReasons,
  // DeleteReasons.
  void Purge();

 private:
  bool ReadIniForm(const std::string& strVer, const std::string& FileName,
                   std::string& strErrMsg);
  bool ReadRecordForm(float ver, const std::string& strVer,
                      const std::string& FileName, std::string& strErrMsg);
};

// ParseAllowedUsers()
//
// Appends to `users` the names in a "Permissions" "Allowed" value: names
// are separated by spaces; a double quote toggles a quoted run (and is
// dropped), inside which a space belongs to the name; empty names are
// skipped.
void ParseAllowedUsers(const std::string& value,
                       Collection<std::string>& users);

}  // namespace pelinor

#endif  // PELINOR_PROFILE_H_
