// The character-mapping table of the pattern engine: which character OCR
// may have produced in place of which other one ("O" read for "0", "5" for
// "S"). Coercion tries such replacements before it gives up on a text.
//
// File format ("CharMap.txt"): docs/formats/charmap.md.
//
// A new cCharMapper holds the 156 built-in mappings; LoadCharMap() replaces
// them with a file's contents. The built-in table is shared by every mapper
// until one is changed, so creating a mapper per evaluation costs nothing.
//
// Thread safety: a mapper is used by one thread at a time; separate
// mappers may be used from separate threads at once.

#ifndef PELINOR_CHAR_MAPPER_H_
#define PELINOR_CHAR_MAPPER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor {

// The names of the character sets that may be given as a wanted set.
inline constexpr char kDigitsSet[] = "##DIGITS##";              // "0" to "9"
inline constexpr char kUpperCaseAlphaSet[] = "##UCASEALPHA##";  // "A" to "Z"
inline constexpr char kLowerCaseAlphaSet[] = "##LCASEALPHA##";  // "a" to "z"

// The messages of LoadCharMap().
inline constexpr char kCharMapAccessError[] = "Unable to access char mappings";
inline constexpr char kCharMapOpenError[] =
    "Unable to open character mapping file. ";
inline constexpr char kCharMapReadError[] =
    "Error reading character mapping file. ";
inline constexpr char kCharMapVersionError[] = "Invalid version number";

// cMap
//
// One mapping: OCR may have produced `CharFrom` where `CharTo` was written.
// Either text may be empty (a blank in the file).
struct cMap {
  std::string CharFrom;
  std::string CharTo;
};

// IsCharInSet()
//
// True when the first character of `text` belongs to `set`: one of the
// named sets above, or else a plain list of characters that contains it.
// An empty `text` belongs to no set.
bool IsCharInSet(std::string_view text, std::string_view set);

class cCharMapper {
 public:
  // Starts with the built-in mappings.
  cCharMapper();

  // Count()
  //
  // The number of mappings.
  int32_t Count() const;

  // Item()
  //
  // The mapping at the one-based index `i`; an empty mapping when `i` is
  // out of range.
  const cMap& Item(int32_t i) const;

  // Add()
  //
  // Appends a mapping; it is visited after all the others.
  void Add(const std::string& CharFrom, const std::string& CharTo);

  // Clear()
  //
  // Removes every mapping.
  void Clear();

  // LoadCharMap()
  //
  // Loads a mapping file (docs/formats/charmap.md) and reports the outcome
  // in `success`. When the version item is accepted the table is replaced
  // by the file's mapping lines (possibly none); on failure `strErrMsg` is
  // one of the messages above (the open and read messages followed by the
  // reason) and the table is as it was. `strErrMsg` is cleared first.
  void LoadCharMap(const std::string& path, std::string& strErrMsg,
                   bool& success);

  // Map()
  //
  // Applies the first mapping, in table order, whose CharTo begins with a
  // character of `wantedSet` (see IsCharInSet()) and whose non-empty
  // CharFrom occurs in `text`: every occurrence of CharFrom is replaced by
  // CharTo (case-sensitive) and `found` is true. Only one mapping is
  // applied per call. When none qualifies `text` is unchanged and `found`
  // is false.
  void Map(std::string& text, std::string_view wantedSet, bool& found) const;

  // Mappings()
  //
  // The table in order, for routines that scan it repeatedly.
  const std::vector<cMap>& Mappings() const { return *table_; }

 private:
  // Gives this mapper its own copy of the table before a change.
  std::vector<cMap>& Own();

  // Shared with the built-in table or with copies of this mapper until a
  // change; never changed while shared.
  std::shared_ptr<std::vector<cMap>> table_;
};

// BuiltInCharMappings()
//
// The 156 built-in mappings in their order.
const std::vector<cMap>& BuiltInCharMappings();

}  // namespace pelinor

#endif  // PELINOR_CHAR_MAPPER_H_
