// Huge inputs fail cleanly: a 100 MB line, counts claiming 2^31 items and
// a pattern with a million-character brace section. Each case runs in a
// child process so that its peak memory can be read and bounded.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "pelinor/document_data.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/ini_file.h"
#include "pelinor/line_data.h"
#include "pelinor/queue.h"
#include "pelinor/queue_entry.h"
#include "pelinor/template.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
#else
constexpr bool kSanitized = false;
#endif

constexpr size_t kMiB = size_t{1} << 20;
constexpr size_t kHugeLine = 100 * kMiB;

// Runs `body` in a child; expects it to return "" (anything else is the
// failure to report) and its peak memory to stay under `limit` bytes
// (doubled, plus the sanitizer's own, in sanitized builds).
void RunBounded(const std::function<std::string()>& body, size_t limit) {
  int pipe_fds[2];
  ASSERT_EQ(pipe(pipe_fds), 0);
  const pid_t pid = fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) {
    close(pipe_fds[0]);
    const std::string failure = body();
    const ssize_t n = write(pipe_fds[1], failure.data(), failure.size());
    _exit(n == static_cast<ssize_t>(failure.size()) ? 0 : 1);
  }
  close(pipe_fds[1]);
  std::string failure;
  char buffer[512];
  for (ssize_t n; (n = read(pipe_fds[0], buffer, sizeof buffer)) > 0;) {
    failure.append(buffer, static_cast<size_t>(n));
  }
  close(pipe_fds[0]);
  int status = 0;
  struct rusage usage = {};
  ASSERT_EQ(wait4(pid, &status, 0, &usage), pid);
  ASSERT_TRUE(WIFEXITED(status)) << "the child crashed";
  EXPECT_EQ(failure, "");
  const size_t peak = static_cast<size_t>(usage.ru_maxrss) * 1024;
  const size_t allowed = kSanitized ? 2 * limit + 512 * kMiB : limit;
  EXPECT_LT(peak, allowed) << "peak memory " << peak / kMiB << " MiB";
}

std::string Expect(bool ok, const std::string& err, const std::string& want) {
  if (ok) return "the read succeeded";
  if (err != want) return "message \"" + err + "\", expected \"" + want + "\"";
  return "";
}

// The bytes of `path`: a version line and a count, then `rest`.
void WriteCounted(const std::string& path, const std::string& version,
                  const std::string& count_line, const std::string& rest) {
  WriteFile(path, version + "\r\n" + count_line + "\r\n" + rest);
}

TEST(Limits, HundredMegabyteLine) {
  TempDir dir;
  const std::string huge(kHugeLine, 'x');
  const std::string tag = dir.File("doc.tag");
  WriteFile(tag, "ver0.946\r\nDocStatus:" + huge + "\r\n");
  RunBounded(
      [&] {
        auto doc = cDocumentData::New();
        std::string err;
        return Expect(doc->ReadSettings(tag, err), err, kDocTagsReadError);
      },
      4 * kHugeLine);

  const std::string queue = dir.File("queue.txt");
  WriteFile(queue, "\"ver0.946\"\r\n1\r\n\"" + huge + "\"\r\n");
  RunBounded(
      [&] {
        cQueue q;
        std::string err;
        return Expect(q.ReadSettings(queue, err), err, kQueueEntryPastEnd);
      },
      4 * kHugeLine);

  const std::string ini = dir.File("settings.ini");
  WriteFile(ini, "[Main]\r\nDisplayName:" + huge + "\r\nOther:1\r\n");
  RunBounded(
      [&] {
        cIniFile file;
        std::string err;
        const int32_t other = file.GetSettingLong("Main", "Other", 0, ini, err);
        const std::string name =
            file.GetSettingString("Main", "DisplayName", "", ini, err);
        if (other != 1) return std::string("the record after it was lost");
        if (name.size() != kHugeLine) return std::string("the value was cut");
        return std::string();
      },
      4 * kHugeLine);
}

TEST(Limits, CountsClaimingTwoToTheThirtyOne) {
  TempDir dir;
  const std::string entry =
      "\"INV1\",\"Scanner\",\"Invoices\",#TRUE#,90,50,\"\",\"\",#FALSE#,1,"
      "\"\",\"\",\"0\",\"0\",\"0\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\","
      "\"\",\"\",\"\",\"\",\"\",\"\",\"\",#FALSE#,0,#FALSE#,#FALSE#,-1,"
      "#FALSE#,1,0,0,#FALSE#,0\r\n";
  const std::string queue = dir.File("queue.txt");
  // 2^31 is no 32-bit count at all; 2^31 - 1 runs out of entries.
  struct Case {
    const char* count;
    const char* message;
  } cases[] = {{"2147483648", kQueueFileBadCount},
               {"2147483647", kQueueEntryPastEnd}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.count);
    WriteCounted(queue, "\"ver0.946\"", c.count, entry + entry);
    RunBounded(
        [&] {
          cQueue q;
          std::string err;
          return Expect(q.ReadSettings(queue, err), err, c.message);
        },
        256 * kMiB);
  }

  const std::string tag = dir.File("doc.tag");
  for (const char* count : {"2147483648", "2147483647"}) {
    SCOPED_TRACE(count);
    WriteFile(tag,
              "ver0.946\r\nDocStatus:1\r\nDocMessage:\r\nInvoices\r\n"
              "LastSheetIndex:1\r\nFieldsCount:" +
                  std::string(count) +
                  "\r\nField1Name:Total\r\nField1Value:1\r\n");
    RunBounded(
        [&] {
          auto doc = cDocumentData::New();
          std::string err;
          return Expect(doc->ReadSettings(tag, err), err, kDocTagsReadError);
        },
        256 * kMiB);
  }
}

TEST(Limits, MillionCharacterBraceSection) {
  const std::string spec = "{" + std::string(1000000, '0') + "}";
  RunBounded(
      [&] {
        std::string text = "12345", value, err;
        if (ValidatePatternValue(text, spec, true, value, err)) {
          return std::string("the value was accepted");
        }
        if (err.empty()) return std::string("no message");
        return std::string();
      },
      512 * kMiB);
}

}  // namespace
}  // namespace pelinor
