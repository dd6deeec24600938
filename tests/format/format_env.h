// Test surroundings of the value formats: the "HalvernLocale" registry
// setting and the format log, both in a scratch directory.

#ifndef PELINOR_TESTS_FORMAT_FORMAT_ENV_H_
#define PELINOR_TESTS_FORMAT_FORMAT_ENV_H_

#include <string>
#include <vector>

#include "pelinor/log.h"
#include "test_util.h"

namespace pelinor::testing {

class FormatEnv {
 public:
  // Points PELINOR_REGISTRY at a registry file holding "HalvernLocale"
  // = `locale` ("" writes no value, so the default "GB" holds) and turns
  // the format log off.
  explicit FormatEnv(const std::string& locale = "")
      : registry_("PELINOR_REGISTRY", dir_.File("registry.reg")),
        log_(kFormatLogVariable, "") {
    std::string text =
        "Windows Registry Editor Version 5.00\r\n\r\n"
        "[HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\Default]"
        "\r\n";
    if (!locale.empty()) text += "\"HalvernLocale\"=\"" + locale + "\"\r\n";
    WriteFile(dir_.File("registry.reg"), text);
  }

  // Switches the format log on, into a file of the scratch directory.
  void LogOn() { setenv(kFormatLogVariable, LogPath().c_str(), 1); }

  std::string LogPath() const { return dir_.File("format.log"); }

  // The messages of the log lines written so far, without their
  // "yyyy-mm-dd hh:mm:ss " stamp and CR LF.
  std::vector<std::string> LogMessages() const {
    std::vector<std::string> messages;
    const std::string text = ReadFile(LogPath());
    size_t start = 0;
    for (size_t end; (end = text.find("\r\n", start)) != std::string::npos;
         start = end + 2) {
      messages.push_back(text.substr(start + 20, end - start - 20));
    }
    return messages;
  }

 private:
  TempDir dir_;
  ScopedEnv registry_;
  ScopedEnv log_;
};

}  // namespace pelinor::testing

#endif  // PELINOR_TESTS_FORMAT_FORMAT_ENV_H_
