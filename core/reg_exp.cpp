// cRegExp on PCRE2 (8-bit code units, no UTF, LF newlines).

#include "pelinor/reg_exp.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace pelinor {
namespace internal {

struct CompiledPattern {
  pcre2_code* code = nullptr;
  bool jit = false;
  std::string error;  // the compile error when `code` is null

  CompiledPattern() = default;
  CompiledPattern(const CompiledPattern&) = delete;
  CompiledPattern& operator=(const CompiledPattern&) = delete;
  ~CompiledPattern() {
    if (code != nullptr) pcre2_code_free(code);
  }
};

}  // namespace internal

namespace {

using internal::CompiledPattern;

// The cache holds the patterns of the last evaluations. Engines are created
// per evaluation, so recompiling would dominate their cost; the bound keeps
// a process fed with ever-new patterns from growing without limit. When
// the bound is reached the cache starts afresh: entries still in use stay
// alive through their holders' shared pointers.
constexpr size_t kCacheLimit = 256;

// Looked up by std::string_view so that a look-up allocates nothing.
struct TextHash {
  using is_transparent = void;
  size_t operator()(std::string_view s) const {
    return std::hash<std::string_view>()(s);
  }
};

using CacheMap =
    std::unordered_map<std::string, std::shared_ptr<const CompiledPattern>,
                       TextHash, std::equal_to<>>;

struct PatternCache {
  std::mutex mu;
  CacheMap maps[2];  // case-sensitive, ignoring case
};

PatternCache& Cache() {
  static auto* cache = new PatternCache();
  return *cache;
}

std::string PcreMessage(int code) {
  PCRE2_UCHAR buffer[256];
  int n = pcre2_get_error_message(code, buffer, sizeof buffer);
  if (n < 0) return "error " + std::to_string(code);
  return std::string(reinterpret_cast<const char*>(buffer),
                     static_cast<size_t>(n));
}

std::shared_ptr<const CompiledPattern> Compile(const std::string& pattern,
                                               bool ignore_case) {
  auto out = std::make_shared<CompiledPattern>();
  uint32_t options = PCRE2_NEVER_UTF | PCRE2_NEVER_UCP | PCRE2_DOLLAR_ENDONLY |
                     PCRE2_ALLOW_EMPTY_CLASS;
  if (ignore_case) options |= PCRE2_CASELESS;
  pcre2_compile_context* context = pcre2_compile_context_create(nullptr);
  if (context != nullptr) {
    pcre2_set_newline(context, PCRE2_NEWLINE_LF);
  }
  int error = 0;
  PCRE2_SIZE offset = 0;
  out->code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()),
                            pattern.size(), options, &error, &offset, context);
  if (context != nullptr) pcre2_compile_context_free(context);
  if (out->code == nullptr) {
    out->error = std::string(kRegExpSyntaxError) + " (" + PcreMessage(error) +
                 " at offset " + std::to_string(offset) + ")";
    return out;
  }
  out->jit = pcre2_jit_compile(out->code, PCRE2_JIT_COMPLETE) == 0;
  return out;
}

std::shared_ptr<const CompiledPattern> Lookup(const std::string& pattern,
                                              bool ignore_case) {
  PatternCache& cache = Cache();
  CacheMap& map = cache.maps[ignore_case ? 1 : 0];
  {
    std::lock_guard<std::mutex> lock(cache.mu);
    auto it = map.find(std::string_view(pattern));
    if (it != map.end()) return it->second;
  }
  // Compile outside the lock; two threads compiling the same new pattern
  // at once both succeed and the first entry stays.
  std::shared_ptr<const CompiledPattern> compiled =
      Compile(pattern, ignore_case);
  std::lock_guard<std::mutex> lock(cache.mu);
  if (cache.maps[0].size() + cache.maps[1].size() >= kCacheLimit) {
    cache.maps[0].clear();
    cache.maps[1].clear();
  }
  return map.emplace(pattern, std::move(compiled)).first->second;
}

// Equality of two texts, compared eight bytes at a time: Prepare() runs it
// on every Execute(), and for patterns of a few dozen bytes a library
// memcmp() call costs as much as matching a short field text.
inline bool SameText(const std::string& a, const std::string& b) {
  const size_t n = a.size();
  if (n != b.size()) return false;
  const char* pa = a.data();
  const char* pb = b.data();
  if (n < 8) return std::memcmp(pa, pb, n) == 0;
  auto word = [](const char* p) {
    uint64_t w;
    std::memcpy(&w, p, 8);
    return w;
  };
  for (size_t i = 0; i + 8 < n; i += 8) {
    if (word(pa + i) != word(pb + i)) return false;
  }
  // The last eight bytes, overlapping the words already compared.
  return word(pa + n - 8) == word(pb + n - 8);
}

}  // namespace

const cMatch& cMatchCollection::Item(int32_t i) const {
  static const cMatch kEmpty;
  if (i < 0 || i >= Count()) return kEmpty;
  return items_[static_cast<size_t>(i)];
}

cRegExp::cRegExp() = default;

cRegExp::~cRegExp() {
  if (match_data_ != nullptr) {
    pcre2_match_data_free(static_cast<pcre2_match_data*>(match_data_));
  }
}

bool cRegExp::Prepare(std::string& strErrMsg) {
  if (code_ != nullptr && code_->code != nullptr && match_data_ != nullptr &&
      compiled_ignore_case_ == IgnoreCase &&
      SameText(compiled_pattern_, Pattern)) {
    return true;
  }
  return Recompile(strErrMsg);
}

bool cRegExp::Recompile(std::string& strErrMsg) {
  if (code_ == nullptr || compiled_ignore_case_ != IgnoreCase ||
      !SameText(compiled_pattern_, Pattern)) {
    code_ = Lookup(Pattern, IgnoreCase);
    compiled_pattern_ = Pattern;
    compiled_ignore_case_ = IgnoreCase;
  }
  if (code_->code == nullptr) {
    strErrMsg = code_->error;
    return false;
  }
  if (match_data_ == nullptr) {
    // Only the whole match is read, so one offset pair is enough whatever
    // the number of groups.
    match_data_ = pcre2_match_data_create(1, nullptr);
    if (match_data_ == nullptr) {
      strErrMsg = "Regular expression match failed (out of memory)";
      return false;
    }
  }
  return true;
}

bool cRegExp::Execute(std::string_view text, cMatchCollection& matches,
                      std::string& strErrMsg) {
  matches.Clear();
  if (!Prepare(strErrMsg)) return false;
  auto* md = static_cast<pcre2_match_data*>(match_data_);
  const auto* subject = reinterpret_cast<PCRE2_SPTR>(text.data());
  const size_t length = text.size();
  size_t pos = 0;
  while (pos <= length) {
    int rc =
        code_->jit
            ? pcre2_jit_match(code_->code, subject, length, pos, 0, md, nullptr)
            : pcre2_match(code_->code, subject, length, pos, 0, md, nullptr);
    if (rc == PCRE2_ERROR_NOMATCH) break;
    if (rc < 0) {
      matches.Clear();
      strErrMsg = "Regular expression match failed (" + PcreMessage(rc) + ")";
      return false;
    }
    const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(md);
    size_t begin = ovector[0];
    size_t end = ovector[1] < begin ? begin : ovector[1];
    matches.Add(text.substr(begin, end - begin), static_cast<int32_t>(begin));
    if (!Global) break;
    pos = end == begin ? end + 1 : end;
  }
  return true;
}

bool cRegExp::Test(std::string_view text) {
  std::string ignored;
  if (!Prepare(ignored)) return false;
  auto* md = static_cast<pcre2_match_data*>(match_data_);
  const auto* subject = reinterpret_cast<PCRE2_SPTR>(text.data());
  int rc = code_->jit ? pcre2_jit_match(code_->code, subject, text.size(), 0, 0,
                                        md, nullptr)
                      : pcre2_match(code_->code, subject, text.size(), 0, 0, md,
                                    nullptr);
  return rc >= 0;
}

size_t RegExpCacheSize() {
  PatternCache& cache = Cache();
  std::lock_guard<std::mutex> lock(cache.mu);
  return cache.maps[0].size() + cache.maps[1].size();
}

}  // namespace pelinor
