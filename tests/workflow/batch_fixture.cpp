#include "batch_fixture.h"

#include <filesystem>
#include <random>

#include "pelinor/table_extract.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

constexpr int32_t kCharWidth = 25;
constexpr int32_t kLineHeight = 40;
constexpr int32_t kWrapPitch = 50;  // top to top of a wrapped line

// Adds the words of `text` (split at blanks) from `left` on.
void Put(cPage& page, const std::string& text, int32_t left, int32_t top) {
  size_t start = 0;
  int32_t x = left;
  while (start <= text.size()) {
    size_t end = text.find(' ', start);
    if (end == std::string::npos) end = text.size();
    if (end > start) {
      const std::string word = text.substr(start, end - start);
      const int32_t w = static_cast<int32_t>(word.size()) * kCharWidth;
      page.Words.push_back({word, {x, top, w, kLineHeight}, 93});
      x += w + kCharWidth;
    } else {
      x += kCharWidth;
    }
    start = end + 1;
  }
}

cPage NewPage() {
  cPage p;
  p.Width = 2480;
  p.Height = 3508;
  p.Dpi = 300;
  return p;
}

void Header(cPage& p, const GenInvoice& inv, int32_t page_no) {
  Put(p, "ACME TRADING LTD", 150, 150);
  Put(p, "12 Mill Lane, Leeds", 150, 210);
  Put(p, "Invoice number:", 150, 300);
  Put(p, inv.number, 700, 300);
  Put(p, "Page " + std::to_string(page_no), 2000, 150);
  Put(p, "Description", 150, 600);
  Put(p, "Qty", 1500, 600);
  Put(p, "Amount", 1950, 600);
}

}  // namespace

std::shared_ptr<cTemplate> GenTemplate() {
  auto tpl = cTemplate::New();
  tpl->TemplateIdentifier = "ACME TRADING LTD";
  tpl->TemplateIDDatumX = "150";
  tpl->TemplateIDDatumY = "150";
  tpl->PelinorProfile = "Gen";
  tpl->LineLevel(1);
  tpl->OCRPages(1);
  tpl->FlattenDuplex(1);
  tpl->DocEndMarkInclusive(1);
  tpl->DocEndMarkSideMode(0);
  tpl->ExpectedAttachments(0);
  tpl->LineDataRowSpaceMax("70");
  tpl->LineDataEntitySpaceMax("100");
  auto number = tpl->CreateExtractZones();
  number->FieldName = "InvoiceNumber";
  auto z = number->CreateExtractZone();
  z->Left("650");
  z->Top("280");
  z->Width("500");
  z->Height("80");
  auto table = tpl->CreateLineTable();
  table->Left = 100;
  table->Top = 550;
  table->Width = 2300;
  table->Height = 2800;
  table->Location = kLocationAll;
  auto top = table->CreateTopAnchorRef();
  top->Name = "Description Qty Amount";
  auto bottom = table->CreateBottomAnchorRef();
  bottom->Name = "Total";
  const struct {
    const char* name;
    int32_t left, width;
  } cols[] = {{"Description", 140, 1300},
              {"Quantity", 1450, 400},
              {"Amount", 1860, 500}};
  for (const auto& c : cols) {
    auto col = table->CreateColumn();
    col->Name = c.name;
    col->Left = c.left;
    col->Width = c.width;
  }
  // Every line item has an amount: lines without one are no line items.
  auto rpt = tpl->CreateLineDataRptCondition();
  rpt->Name = "Amount";
  rpt->Operation = "NOT EMPTY";
  return tpl;
}

std::string WriteGenInstallation(const std::string& dir,
                                 void (*tune)(cTemplate& tpl)) {
  std::filesystem::create_directories(dir + "/profiles");
  std::filesystem::create_directories(dir + "/templates");
  const std::string profile = dir + "/profiles/Gen.ini";
  WriteFile(profile,
            "ver0.946\r\n[Main]\r\nDisplayName:Generated invoices\r\n"
            "ValidateScript:v.vbs\r\nExportScript:e.vbs\r\n"
            "TemplatesConfig:template.ini\r\nTemplateDir:templates\r\n"
            "QueueDirLocal:queue\r\nInvalidState:102\r\nFlattenDuplex:1\r\n"
            "LineDataSubRowSpaceMax:70\r\nLineDataEntitySpaceMax:100\r\n"
            "[Field1]\r\nName:InvoiceNumber\r\nType:0\r\nLocation:0\r\n"
            "[Field2]\r\nName:Total\r\nType:4\r\nLocation:-1\r\n"
            "CaptionSearch:Total\r\n"
            "[LineItemHdr1]\r\nName:Description\r\nType:0\r\n"
            "[LineItemHdr2]\r\nName:Quantity\r\nType:0\r\n"
            "[LineItemHdr3]\r\nName:Amount\r\nType:4\r\n");
  auto tpl = GenTemplate();
  if (tune != nullptr) tune(*tpl);
  std::string err;
  tpl->WriteSettings(dir + "/templates/Acme.tpl", err);
  return profile;
}

std::vector<cPage> GenPages(const GenInvoice& inv) {
  std::vector<cPage> pages;
  pages.push_back(NewPage());
  Header(pages.back(), inv, 1);
  int32_t y = 700;
  int32_t on_page = 0;
  for (const GenRow& r : inv.rows) {
    if (on_page == inv.rows_per_page) {
      pages.push_back(NewPage());
      Header(pages.back(), inv, static_cast<int32_t>(pages.size()));
      y = 700;
      on_page = 0;
    }
    cPage& p = pages.back();
    const size_t nl = r.description.find('\n');
    Put(p, r.description.substr(0, nl), 150, y);
    Put(p, r.quantity, 1500, y);
    Put(p, r.amount, 1950, y);
    if (nl != std::string::npos) {
      y += kWrapPitch;
      Put(p, r.description.substr(nl + 1), 150, y);
    }
    y += inv.row_pitch;
    ++on_page;
  }
  cPage& last = pages.back();
  Put(last, "Total", 1500, y + 60);
  Put(last, inv.total, 1950, y + 60);
  if (inv.end_mark) Put(last, "End of invoice", 150, y + 300);
  for (int32_t a = 0; a < inv.attachments; ++a) {
    pages.push_back(NewPage());
    Put(pages.back(), "Delivery note", 150, 150);
    Put(pages.back(), "Packed by the warehouse team", 150, 300);
  }
  for (cPage& p : pages) p.GroupLines();
  return pages;
}

std::vector<GenInvoice> GenInvoices(int32_t n, uint32_t seed) {
  static const char* kItems[] = {"Copier paper A4",     "Stapler heavy duty",
                                 "Blue ballpoint pens", "Toner cartridge",
                                 "Desk lamp LED",       "Filing cabinet key",
                                 "Whiteboard markers",  "Envelopes C5"};
  std::mt19937 rng(seed);
  std::vector<GenInvoice> out;
  for (int32_t i = 0; i < n; ++i) {
    GenInvoice inv;
    inv.number = "INV-" + std::to_string(10001 + i);
    const int32_t rows = 1 + static_cast<int32_t>(rng() % 6);
    int64_t total = 0;
    for (int32_t r = 0; r < rows; ++r) {
      GenRow row;
      row.description = kItems[rng() % 8];
      if (rng() % 4 == 0) row.description += "\nsupplied in boxes of 10";
      row.quantity = std::to_string(1 + rng() % 9);
      const int64_t pence = 100 + static_cast<int64_t>(rng() % 99900);
      total += pence;
      char buf[32];
      std::snprintf(buf, sizeof buf, "%lld.%02lld",
                    static_cast<long long>(pence / 100),
                    static_cast<long long>(pence % 100));
      row.clean_amount = buf;
      row.amount = buf;
      // A misread nought, as OCR gives it now and then.
      if (rng() % 5 == 0 && row.amount.back() == '0') row.amount.back() = 'O';
      inv.rows.push_back(row);
    }
    char buf[32];
    std::snprintf(buf, sizeof buf, "%lld.%02lld",
                  static_cast<long long>(total / 100),
                  static_cast<long long>(total % 100));
    inv.clean_total = buf;
    inv.total = "\xA3" + inv.clean_total;
    out.push_back(inv);
  }
  return out;
}

cPageModel GenBatch(const std::vector<GenInvoice>& invoices) {
  cPageModel m;
  for (const GenInvoice& inv : invoices) {
    for (cPage& p : GenPages(inv)) m.Pages.push_back(std::move(p));
  }
  return m;
}

}  // namespace pelinor::testing
