// A generated corpus of raw document tag files for capture tests: every
// data type the capture run knows (amounts, numerics, dates of every
// format, postcodes, patterns) with clean, repairable and hopeless OCR
// texts, and line items. Deterministic for a given seed.

#ifndef PELINOR_TESTS_CAPTURE_CAPTURE_CORPUS_H_
#define PELINOR_TESTS_CAPTURE_CAPTURE_CORPUS_H_

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace pelinor::testing {

struct CorpusField {
  const char* name;  // profile names give the profile's pattern
  int32_t type;      // explicit data type, 0 for the profile's
  std::vector<const char*> values;
};

inline const std::vector<CorpusField>& CorpusFields() {
  static const std::vector<const char*> amounts = {
      "\xA3"
      "1,234.5O",
      "12.5",
      "1250",
      "S5",
      "$1,000.00",
      "-12.50",
      "abc",
      "",
      "12.",
      "1.2.3",
      "GB 96.0O",
      "0"};
  static const std::vector<const char*> numbers = {
      "1O", "1,5", "12.345,67", "l", "x", "007", "3.14", "1.000.000"};
  static const std::vector<const char*> dates = {
      "12 0CT 2003",        "1.2.03",       "12/10/2003",       "20031012",
      "3. M\xE4rz 2004",    "12 mars 2004", "dicembre 7, 2004", "31/02/2003",
      "7 de julho de 2004", "xx",           "2003/10/12",       "10-12-03",
      "13/13/2013",         "29 feb 99",    "Oct 5 2004"};
  static const std::vector<const char*> postcodes = {
      "SW1A1AA", "M1 IAA",   "EC1A 1BB", "12345",
      "GIR0AA",  "sw1a 1aa", "B33 8TH"};
  static const std::vector<CorpusField> fields = {
      {"InvoiceNumber", 0, {"INV-0O1234", "AB123456", "AB12345", "ab 123456"}},
      {"InvoiceDate", 0, dates},
      {"TotalAmount", 0, amounts},
      {"SupplierPostCode", 0, postcodes},
      {"VATNumber", 0, {"GB 123 4567 89", "GB12345678", "GB123456789012"}},
      {"PurchaseOrder", 0, {"P0-004521", "PO123456", "PO-12"}},
      {"SortCode", 0, {"12-34-56", "l2-34-S6", "123456"}},
      {"Currency", 0, {"GBP", "G8P", "gbp", "EURO"}},
      {"Amount4", 4, amounts},
      {"Amount200", 200, amounts},
      {"Number2", 2, numbers},
      {"Number300", 300, numbers},
      {"PostCode5", 5, postcodes},
      {"Date3", 3, dates},
      {"Date100", 100, dates},
      {"Date101", 101, dates},
      {"Date102", 102, dates},
      {"Date103", 103, dates},
      {"Date104", 104, dates},
      {"Date105", 105, dates},
      {"Date106", 106, dates},
      {"Date107", 107, dates},
  };
  return fields;
}

// The raw tag file of document `index` of the corpus of `seed`.
inline std::string CorpusDocument(uint32_t seed, uint32_t index) {
  std::mt19937 rng(seed * 7919u + index);
  auto pick = [&rng](const std::vector<const char*>& v) {
    return std::string(v[rng() % v.size()]);
  };
  const std::string nl = "\r\n";
  std::string t = "ver0.946" + nl + "DocStatus:1" + nl +
                  "DocMessage:Tag has not been validated" + nl + "Invoices" +
                  nl + "LastSheetIndex:1" + nl;
  const auto& fields = CorpusFields();
  t += "FieldsCount:" + std::to_string(fields.size()) + nl;
  for (size_t i = 0; i < fields.size(); ++i) {
    const std::string f = "Field" + std::to_string(i + 1);
    t += f + "Name:" + fields[i].name + nl;
    t += f + "Value:" + pick(fields[i].values) + nl;
    t += f + "Status:1" + nl + f + "Message:Tag has not been validated" + nl;
    t += f + "DataLocation:1" + nl;
    t += f + "DataType:" + std::to_string(fields[i].type) + nl;
    t += f + "Coords:10:20:30:40" + nl;
  }
  t += "PseudoFieldsCount:0" + nl + "LLAnchorCount:0" + nl +
       "DocEndMarksCount:0" + nl;
  const int lines = static_cast<int>(rng() % 4);
  t += "LineCount:" + std::to_string(lines) + nl + "ColumnCount:3" + nl;
  static const std::vector<const char*> descriptions = {
      "A4 copier paper, 80gsm", "Delivery", "Toner TN-2420", ""};
  static const std::vector<const char*> quantities = {"1O", "2",     "l",
                                                      "x",  "12345", "0"};
  static const std::vector<const char*> prices = {"2l.50", "64.99", "7.5O",
                                                  "abc", "1,000"};
  for (int l = 1; l <= lines; ++l) {
    const std::string p = "Line" + std::to_string(l);
    t += p + "Status:1" + nl + p + "Message:" + nl + p +
         "Coords:140:1240:1800:50" + nl + p + "DataLocation:1" + nl;
    const std::string cols[3][2] = {{"Description", pick(descriptions)},
                                    {"Quantity", pick(quantities)},
                                    {"UnitPrice", pick(prices)}};
    for (int c = 0; c < 3; ++c) {
      const std::string q = p + "Col" + std::to_string(c + 1);
      t += q + "Name:" + cols[c][0] + nl + q + "Value:" + cols[c][1] + nl + q +
           "Status:1" + nl + q + "Message:" + nl;
    }
  }
  return t;
}

}  // namespace pelinor::testing

#endif  // PELINOR_TESTS_CAPTURE_CAPTURE_CORPUS_H_
