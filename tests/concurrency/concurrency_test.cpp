// Readers and writers in several processes and threads at once: replaced
// files are seen whole, registry writers do not lose each other's values,
// and the shared caches (compiled patterns, month names, parsed registry
// files) hold up under threads. Run under ThreadSanitizer in CI.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "pelinor/document_data.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/field_data.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/queue.h"
#include "pelinor/reg_exp.h"
#include "pelinor/registry.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ScopedEnv;
using testing::TempDir;

constexpr char kKey[] = "Software\\Halvern\\Concurrency";

// "A12" from 'A' and 12.
std::string Numbered(char letter, int i) {
  std::string name(1, letter);
  name += std::to_string(i);
  return name;
}

// Two versions of each file, told apart by their sizes and contents.
struct Version {
  int fields;
  char letter;
  int entries;
};
constexpr Version kVersions[] = {{40, 'a', 100}, {75, 'b', 160}};

void WriteDocument(const std::string& path, const Version& v) {
  auto doc = cDocumentData::New();
  for (int i = 0; i < v.fields; ++i) {
    auto field = doc->CreateField();
    field->Name = "Field" + std::to_string(i);
    field->value = std::string(20, v.letter);
  }
  std::string err;
  ASSERT_TRUE(doc->WriteSettings(path, err)) << err;
}

void WriteQueue(const std::string& path, const Version& v) {
  cQueue queue;
  for (int i = 0; i < v.entries; ++i) {
    auto entry = std::make_shared<cQueueEntry>();
    entry->DocId = Numbered(v.letter, i);
    queue.QueueEntries.Add(entry);
  }
  std::string err;
  ASSERT_TRUE(queue.WriteSettings(path, err)) << err;
}

// Runs `body` in a child process and returns its pid.
template <typename Body>
pid_t Spawn(Body body) {
  const pid_t pid = fork();
  if (pid == 0) {
    body();
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  return pid;
}

int ExitCode(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

TEST(Concurrency, ReadersSeeAWholeOldOrNewFile) {
  TempDir dir;
  const std::string tag = dir.File("doc.tag");
  const std::string queue = dir.File("queue.txt");
  ScopedEnv store("PELINOR_REGISTRY", dir.File("registry.reg"));
  const cRegistry reg;
  WriteDocument(tag, kVersions[0]);
  WriteQueue(queue, kVersions[0]);
  ASSERT_EQ(reg.RegSetStringValue(kHkeyLocalMachine, kKey, "Value", "old"), 0);

  const pid_t writer = Spawn([&] {
    const auto stop =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(1500);
    for (int round = 0; std::chrono::steady_clock::now() < stop; ++round) {
      const Version& v = kVersions[round % 2];
      WriteDocument(tag, v);
      WriteQueue(queue, v);
      reg.RegSetStringValue(kHkeyLocalMachine, kKey, "Value",
                            round % 2 ? "new" : "old");
    }
  });

  int reads = 0;
  for (;;) {
    int status = 0;
    const bool done = waitpid(writer, &status, WNOHANG) == writer;
    auto doc = cDocumentData::New();
    std::string err;
    ASSERT_TRUE(doc->ReadSettings(tag, err)) << err;
    const int fields = doc->Fields.Count();
    ASSERT_TRUE(fields == kVersions[0].fields || fields == kVersions[1].fields)
        << fields;
    const char letter = fields == kVersions[0].fields ? 'a' : 'b';
    for (const auto& field : doc->Fields) {
      ASSERT_EQ(field->value, std::string(20, letter));
    }

    cQueue q;
    ASSERT_TRUE(q.ReadSettings(queue, err)) << err;
    const int entries = q.QueueEntries.Count();
    ASSERT_TRUE(entries == kVersions[0].entries ||
                entries == kVersions[1].entries)
        << entries;
    const char first = entries == kVersions[0].entries ? 'a' : 'b';
    ASSERT_EQ(q.QueueEntries.Item(entries)->DocId,
              Numbered(first, entries - 1));

    const std::string value =
        reg.RegGetStringValue(kHkeyLocalMachine, kKey, "Value", "missing");
    ASSERT_TRUE(value == "old" || value == "new") << value;
    ++reads;
    if (done) {
      ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
      break;
    }
  }
  EXPECT_GT(reads, 1);
}

TEST(Concurrency, TwoRegistryWritersKeepEachOthersValues) {
  TempDir dir;
  ScopedEnv store("PELINOR_REGISTRY", dir.File("registry.reg"));
  constexpr int kValues = 150;
  auto write_all = [](char who) {
    const cRegistry reg;
    for (int i = 0; i < kValues; ++i) {
      const std::string name = Numbered(who, i);
      EXPECT_EQ(reg.RegSetStringValue(kHkeyLocalMachine, kKey, name, name), 0);
    }
  };
  const pid_t first = Spawn([&] { write_all('A'); });
  const pid_t second = Spawn([&] { write_all('B'); });
  EXPECT_EQ(ExitCode(first), 0);
  EXPECT_EQ(ExitCode(second), 0);

  const cRegistry reg;
  int missing = 0;
  for (char who : {'A', 'B'}) {
    for (int i = 0; i < kValues; ++i) {
      const std::string name = Numbered(who, i);
      if (reg.RegGetStringValue(kHkeyLocalMachine, kKey, name, "") != name) {
        ++missing;
      }
    }
  }
  EXPECT_EQ(missing, 0);
}

// Several threads share the compiled-pattern cache, the month tables and
// the registry's parsed-file cache while one thread keeps rewriting the
// registry file.
TEST(Concurrency, SharedCachesHoldUnderThreads) {
  TempDir dir;
  ScopedEnv store("PELINOR_REGISTRY", dir.File("registry.reg"));
  ScopedEnv user_store("PELINOR_USER_REGISTRY", dir.File("user.reg"));
  const cRegistry reg;
  ASSERT_EQ(reg.RegSetStringValue(kHkeyLocalMachine, kServerKeyPath,
                                  kLocaleValue, "GB"),
            0);
  std::atomic<bool> stop{false};
  std::atomic<int> failures{0};

  std::thread registry_writer([&] {
    for (int i = 0; !stop; ++i) {
      reg.RegSetStringValue(kHkeyLocalMachine, kKey, "Counter",
                            std::to_string(i));
    }
  });

  auto worker = [&](int seed) {
    const cPatternEngine engine;
    for (int round = 0; round < 60; ++round) {
      cRegExp re;
      re.Pattern =
          "^[A-Z]{2}[0-9]{" + std::to_string(1 + (round + seed) % 5) + "}$";
      re.IgnoreCase = round % 2 == 0;
      if (!re.Test("ab1") && (round + seed) % 5 == 0 && re.IgnoreCase) {
        ++failures;
      }
      std::string out;
      bool coerced = false;
      engine.CoerceDate(round % 2 ? "3. M\xE4rz 2004" : "12. Okt. 2003", out,
                        "DATEDE", coerced);
      if (!coerced || out != (round % 2 ? "03/03/2004" : "12/10/2003")) {
        ++failures;
      }
      std::string text = "INV 0O12" + std::to_string(round % 10);
      std::string value, err;
      EvaluatePattern(text, "\"INV\"[3]N[4]", true, true, false, false, value,
                      err, "");
      if (reg.RegGetStringValue(kHkeyLocalMachine, kServerKeyPath, kLocaleValue,
                                "") != "GB") {
        ++failures;
      }
    }
  };
  std::vector<std::thread> workers;
  for (int i = 0; i < 4; ++i) workers.emplace_back(worker, i);
  for (auto& t : workers) t.join();
  stop = true;
  registry_writer.join();
  EXPECT_EQ(failures.load(), 0);
}

}  // namespace
}  // namespace pelinor
