// Sectioned settings files: "[Section]" header lines followed by
// "Name:Value" records.
//
// Format: see docs/formats/settings-files.md.
//
// cIniFile keeps one file open at a time. The first call that needs a file
// opens the one it names; every later call reads that same file, whatever
// name it passes, until CloseFile(). The file is read and indexed once when
// opened (section positions and their lines), so look-ups cost time in the
// size of the section searched, not of the file; changes to the file are
// seen after CloseFile().
//
// Every call except CloseFile() clears `strErrMsg`, or sets it to
// "Cannot find file " + name when no file is open and `strFileName` does
// not exist; the call then returns its default (0 for the Long results)
// and leaves its collections untouched. A file that exists but cannot be
// read gives the defaults quietly.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_INI_FILE_H_
#define PELINOR_INI_FILE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"

namespace pelinor {

// cKeyPair: a plain name/value pair for clients.
class cKeyPair {
 public:
  std::string Name;
  std::string value;
};

class cIniFile {
 public:
  cIniFile();
  ~cIniFile();
  cIniFile(const cIniFile&) = delete;
  cIniFile& operator=(const cIniFile&) = delete;

  // GetSettingString()
  //
  // The trimmed value of the first record named `strName` (ignoring case)
  // in section `strSection` (ignoring case); `strDefault` when the section,
  // the record or its value is missing or empty.
  std::string GetSettingString(const std::string& strSection,
                               const std::string& strName,
                               const std::string& strDefault,
                               const std::string& strFileName,
                               std::string& strErrMsg);

  // GetSettingSingle()
  // GetSettingDouble()
  // GetSettingLong()
  //
  // As GetSettingString(), converted; the default when the value is not
  // numeric. The Long form rounds half to even.
  float GetSettingSingle(const std::string& strSection,
                         const std::string& strName, float sgDefault,
                         const std::string& strFileName,
                         std::string& strErrMsg);
  double GetSettingDouble(const std::string& strSection,
                          const std::string& strName, double dblDefault,
                          const std::string& strFileName,
                          std::string& strErrMsg);
  int32_t GetSettingLong(const std::string& strSection,
                         const std::string& strName, int32_t lDefault,
                         const std::string& strFileName,
                         std::string& strErrMsg);

  // FindHeader()
  //
  // 1 when section `strSection` exists, otherwise 0.
  int32_t FindHeader(const std::string& strSection,
                     const std::string& strFileName, std::string& strErrMsg);

  // GetStrings()
  //
  // Replaces `colstrings` with the non-empty lines of section `Header`, as
  // they stand. Returns 1 only when the section ran to the end of the file;
  // 0 when it ended at the next header (the lines are collected all the
  // same) or was not found.
  int32_t GetStrings(const std::string& strFileName, const std::string& Header,
                     Collection<std::string>& colstrings,
                     std::string& strErrMsg);

  // GetPELINORStates()
  //
  // Replaces the three collections with the parallel columns of the
  // "States" section's "STATEn:description:on-hold message" lines. The
  // result follows GetStrings().
  int32_t GetPELINORStates(const std::string& strFileName,
                           Collection<std::string>& colstates,
                           Collection<std::string>& coltbcmsgs,
                           Collection<std::string>& colonholdmsgs,
                           std::string& strErrMsg);

  // CloseFile()
  //
  // Closes the open file, if any.
  void CloseFile();

 private:
  // The open file's contents with its lines and section positions.
  struct Index;

  // Opens and indexes `strFileName` unless a file is open; false (with
  // `strErrMsg` set as described above) when the call must return its
  // default.
  bool EnsureOpen(const std::string& strFileName, std::string& strErrMsg);

  std::unique_ptr<Index> index_;  // null while no file is open
};

}  // namespace pelinor

#endif  // PELINOR_INI_FILE_H_
