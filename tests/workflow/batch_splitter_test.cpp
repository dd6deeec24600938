// Batches into documents: starts at identified pages, end marks inclusive
// or not, attachments, duplex sheets and their indexes.

#include "pelinor/batch_splitter.h"

#include <functional>

#include "batch_fixture.h"
#include "gtest/gtest.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

cPage TextPage(const std::string& text) {
  cPage p;
  p.Width = 2480;
  p.Height = 3508;
  int32_t x = 150;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(' ', start);
    if (end == std::string::npos) end = text.size();
    const std::string w = text.substr(start, end - start);
    p.Words.push_back(
        {w, {x, 150, static_cast<int32_t>(w.size()) * 25, 40}, 90});
    x += static_cast<int32_t>(w.size()) * 25 + 25;
    start = end + 1;
  }
  p.GroupLines();
  return p;
}

GenInvoice Inv(int32_t rows, int32_t per_page, bool mark,
               int32_t attachments = 0) {
  GenInvoice inv = GenInvoices(1, 5)[0];
  inv.rows.resize(1);
  while (static_cast<int32_t>(inv.rows.size()) < rows) {
    inv.rows.push_back(inv.rows[0]);
  }
  inv.rows_per_page = per_page;
  inv.end_mark = mark;
  inv.attachments = attachments;
  return inv;
}

// "1-2|3" for documents of pages 1 and 2, then 3 (one-based).
std::string Groups(const std::vector<cBatchDocument>& docs) {
  std::string s;
  for (const auto& d : docs) {
    if (!s.empty()) s += "|";
    s += std::to_string(d.Pages.front() + 1);
    if (d.Pages.size() > 1) s += "-" + std::to_string(d.Pages.back() + 1);
    if (!d.Identified) s += "?";
  }
  return s;
}

void Mark(cTemplate& t) { t.CreateDocEndMark()->Name = "End of invoice"; }

TEST(BatchSplitter, Documents) {
  const cPage stray = TextPage("Scanner test sheet");
  const cPage blank = TextPage("");
  const cPage note = TextPage("Delivery note");
  const struct {
    const char* name;
    std::vector<std::vector<cPage>> parts;
    std::function<void(cTemplate&)> tune;
    std::string groups;
  } cases[] = {
      {"one page each",
       {GenPages(Inv(1, 30, false)), GenPages(Inv(2, 30, false)),
        GenPages(Inv(1, 30, false))},
       nullptr,
       "1|2|3"},
      {"pages before the first invoice",
       {{stray, stray}, GenPages(Inv(1, 30, false))},
       nullptr,
       "1-2?|3"},
      {"a page of other text stays with the invoice before it",
       {GenPages(Inv(1, 30, false)), {note}, GenPages(Inv(1, 30, false))},
       nullptr,
       "1-2|3"},
      {"without end marks a continuation page starts a document",
       {GenPages(Inv(3, 2, false)), GenPages(Inv(1, 30, false))},
       nullptr,
       "1|2|3"},
      {"with end marks it runs to the mark",
       {GenPages(Inv(3, 2, true)), GenPages(Inv(5, 2, true)),
        GenPages(Inv(1, 30, true))},
       Mark,
       "1-2|3-5|6"},
      {"two attachments after each mark are kept, whatever they show",
       {GenPages(Inv(1, 30, true, 2)), GenPages(Inv(1, 30, true)),
        GenPages(Inv(1, 30, true, 1))},
       [](cTemplate& t) {
         Mark(t);
         t.ExpectedAttachments(2);
       },
       "1-3|4-6"},
      {"an attachment that looks like an invoice is kept too",
       {GenPages(Inv(1, 30, true)), GenPages(Inv(1, 30, true))},
       [](cTemplate& t) {
         Mark(t);
         t.ExpectedAttachments(1);
       },
       "1-2"},
      {"a mark that is not inclusive starts the next document",
       {GenPages(Inv(1, 30, false)), {note, TextPage("End of invoice"), note}},
       [](cTemplate& t) {
         Mark(t);
         t.DocEndMarkInclusive(0);
       },
       "1-2|3-4?"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto profile = std::make_shared<cProfile>();
    profile->FlattenDuplex = 1;
    auto tpl = GenTemplate();
    tpl->Profile = profile;
    tpl->FlattenDuplex(1);
    if (c.tune) c.tune(*tpl);
    cPageModel batch;
    for (const auto& part : c.parts) {
      for (const cPage& p : part) batch.Pages.push_back(p);
    }
    const auto docs = cBatchSplitter().Split(batch, profile, {{"Acme", tpl}});
    EXPECT_EQ(Groups(docs), c.groups);
    size_t pages = 0;
    for (const auto& d : docs) pages += d.Pages.size();
    EXPECT_EQ(pages, batch.Pages.size());
  }
}

TEST(BatchSplitter, DuplexSheetsAndSides) {
  const cPage blank = TextPage("");
  auto profile = std::make_shared<cProfile>();
  profile->FlattenDuplex = 0;
  auto tpl = GenTemplate();
  tpl->Profile = profile;
  tpl->FlattenDuplex(0);
  Mark(*tpl);
  cPageModel batch;
  // Invoice 1: two sheets, the mark on the second front; invoice 2: one
  // sheet whose back page carries nothing; a lone last front.
  GenInvoice one = Inv(3, 2, true);
  for (const cPage& p : GenPages(one)) {
    batch.Pages.push_back(p);
    batch.Pages.push_back(blank);
  }
  for (const cPage& p : GenPages(Inv(1, 30, true))) batch.Pages.push_back(p);
  batch.Pages.push_back(blank);
  for (const cPage& p : GenPages(Inv(1, 30, true))) batch.Pages.push_back(p);
  const auto docs = cBatchSplitter().Split(batch, profile, {{"Acme", tpl}});
  EXPECT_EQ(Groups(docs), "1-4|5-6|7");
  const struct {
    int32_t first_sheet, last_sheet, first_back, last_back;
  } want[] = {{1, 2, 0, 1}, {3, 3, 0, 1}, {4, 4, 0, 0}};
  ASSERT_EQ(docs.size(), 3u);
  for (size_t i = 0; i < docs.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(docs[i].FirstSheetIndex, want[i].first_sheet);
    EXPECT_EQ(docs[i].LastSheetIndex, want[i].last_sheet);
    EXPECT_EQ(docs[i].FirstSideBack, want[i].first_back);
    EXPECT_EQ(docs[i].LastSideBack, want[i].last_back);
    EXPECT_TRUE(docs[i].EndedByMark);
  }
}

TEST(BatchSplitter, EndMarkSides) {
  // The mark printed on the back of the first sheet.
  const cPage blank = TextPage("");
  const cPage mark = TextPage("End of invoice");
  const struct {
    int32_t side_mode;
    std::string groups;
  } cases[] = {{0, "1-2|3-4"}, {2, "1-2|3-4"}, {1, "1-4"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.side_mode);
    auto profile = std::make_shared<cProfile>();
    profile->FlattenDuplex = 0;
    auto tpl = GenTemplate();
    tpl->Profile = profile;
    Mark(*tpl);
    tpl->DocEndMarkSideMode(c.side_mode);
    GenInvoice inv = Inv(1, 30, false);
    cPageModel batch;
    batch.Pages.push_back(GenPages(inv)[0]);
    batch.Pages.push_back(mark);
    // A second sheet of the same template: a new document only when the
    // mark on the back counted.
    batch.Pages.push_back(GenPages(inv)[0]);
    batch.Pages.push_back(blank);
    const auto docs = cBatchSplitter().Split(batch, profile, {{"Acme", tpl}});
    EXPECT_EQ(Groups(docs), c.groups);
  }
}

}  // namespace
}  // namespace pelinor::testing
