// Helpers shared by the fuzz targets: scratch files for readers that take a
// path, splitting one input into several texts, and the checks that turn a
// broken property into a finding.
//
// Every target defines LLVMFuzzerTestOneInput(). Built with libFuzzer it is
// a fuzzer; otherwise corpus_main.cpp runs it over stored inputs, so that
// the seed corpus and every past finding are replayed as a test.

#ifndef PELINOR_FUZZ_FUZZ_UTIL_H_
#define PELINOR_FUZZ_FUZZ_UTIL_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor::fuzz {

// ScratchPath()
//
// A file path private to this process, named by `tag`, in a directory that
// is emptied of it at exit.
std::string ScratchPath(std::string_view tag);

// WriteScratch()
//
// Replaces the scratch file `tag` with `bytes` (a new file each time, so
// that readers caching by file identity see a change) and returns its path.
std::string WriteScratch(std::string_view tag, std::string_view bytes);

// ReadBytes()
//
// The whole contents of `path`; "" when it cannot be read.
std::string ReadBytes(const std::string& path);

// Split()
//
// The first `n` pieces of `data` separated by NUL bytes; missing pieces are
// empty and the last piece takes the rest, NULs included.
std::vector<std::string> Split(const uint8_t* data, size_t size, size_t n);

// Check()
//
// Aborts with `what` when `ok` is false: the fuzzer records the input.
void Check(bool ok, const char* what);

// CheckRoundTrip()
//
// The property every writer and reader pair keeps: whatever the reader
// accepts, once written, reads back and writes again byte for byte the
// same. `read(path)` reads into a fresh object and says whether it
// accepted the file; `write(path)` writes the object last read.
template <typename Read, typename Write>
void CheckRoundTrip(std::string_view tag, const std::string& input_path,
                    Read read, Write write) {
  if (!read(input_path)) return;
  const std::string first = ScratchPath(std::string(tag) + "-1");
  const std::string second = ScratchPath(std::string(tag) + "-2");
  Check(write(first), "writing what was read failed");
  Check(read(first), "reading back what was written failed");
  Check(write(second), "writing the read-back object failed");
  Check(ReadBytes(first) == ReadBytes(second),
        "a write, read and write again changed the file");
}

}  // namespace pelinor::fuzz

#endif  // PELINOR_FUZZ_FUZZ_UTIL_H_
