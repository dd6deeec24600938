// cAnchorRef: a named anchor with its offsets on the page, referred to by
// field types, extraction zones, line-level tables and document-end marks.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_ANCHOR_REF_H_
#define PELINOR_ANCHOR_REF_H_

#include <cstdint>
#include <memory>
#include <string>

namespace pelinor {

class cAnchorRef {
 public:
  std::string Name;
  int32_t XOffset = 0;
  int32_t YOffset = 0;

  // CreateNew()
  //
  // A new anchor with the same name and offsets.
  std::shared_ptr<cAnchorRef> CreateNew() const {
    return std::make_shared<cAnchorRef>(*this);
  }
};

}  // namespace pelinor

#endif  // PELINOR_ANCHOR_REF_H_
