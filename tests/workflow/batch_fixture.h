// Generated batches for the work-queue and line-item tests: a profile with
// line-item headers, an invoice template with a line table, and page
// models of invoices whose values and line items are known, written as
// TSV page files (no OCR needed).

#ifndef PELINOR_TESTS_WORKFLOW_BATCH_FIXTURE_H_
#define PELINOR_TESTS_WORKFLOW_BATCH_FIXTURE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pelinor/page_model.h"
#include "pelinor/template.h"

namespace pelinor::testing {

// One line item as printed and as it reads after cleaning.
struct GenRow {
  std::string description;  // may hold a wrapped second line after '\n'
  std::string quantity;
  std::string amount;        // as printed (may carry OCR slips)
  std::string clean_amount;  // after the capture run
};

// One invoice.
struct GenInvoice {
  std::string number;  // "INV-10042"
  std::string total;   // as printed
  std::string clean_total;
  std::vector<GenRow> rows;
  int32_t rows_per_page = 30;  // the table continues on the next page
  int32_t row_pitch = 90;      // top to top of two rows (lines are 40 high)
  bool end_mark = false;       // print "End of invoice" under the total
  int32_t attachments = 0;     // pages of other text that follow
};

// Writes "<dir>/profiles/Gen.ini" (queue "queue", templates "templates")
// and "<dir>/templates/Acme.tpl"; returns the profile file. `tune` may
// change the template before it is written.
std::string WriteGenInstallation(const std::string& dir,
                                 void (*tune)(cTemplate& tpl) = nullptr);

// The template the installation holds (profile not set).
std::shared_ptr<cTemplate> GenTemplate();

// The pages of `inv` (2480 x 3508 pixels at 300 dpi).
std::vector<cPage> GenPages(const GenInvoice& inv);

// `n` invoices with 1 to 6 rows each (some amounts misread, some
// descriptions wrapped), numbered from INV-10001.
std::vector<GenInvoice> GenInvoices(int32_t n, uint32_t seed);

// A page model holding every page of `invoices`, in order.
cPageModel GenBatch(const std::vector<GenInvoice>& invoices);

}  // namespace pelinor::testing

#endif  // PELINOR_TESTS_WORKFLOW_BATCH_FIXTURE_H_
