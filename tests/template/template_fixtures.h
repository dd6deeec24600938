// A template that uses every group of the template file, shared by the
// template tests.

#ifndef PELINOR_TESTS_TEMPLATE_TEMPLATE_FIXTURES_H_
#define PELINOR_TESTS_TEMPLATE_TEMPLATE_FIXTURES_H_

#include <memory>
#include <string>
#include <tuple>

#include "pelinor/template.h"

namespace pelinor::testing {

inline std::shared_ptr<cTemplate> FullTemplate() {
  auto t = cTemplate::New();
  t->TemplateIdentifier = "ACME LTD INVOICE";
  t->TemplateDisambiguatedID = "2";
  t->ScannerProfile = "Mono 300, duplex";
  t->PelinorProfile = "Invoices";
  t->TemplateIDDatumX = "1210";
  t->TemplateIDDatumY = "140";
  t->UserData = "supplier 4711, net 30";
  t->UserDataPrimary = 1;
  t->ExtractType = 2;
  t->Disambiguate = 3;
  t->LineLevel(1);
  t->OCRPages(-1);
  t->FlattenDuplex(1);
  auto mark = t->CreateDocEndMark();
  mark->Name = "Carried forward";
  mark->XOffset = 150;
  mark->YOffset = 3100;
  t->DocEndMarkInclusive(0);
  t->DocEndMarkSideMode(2);
  t->ExpectedAttachments(4);
  t->UserName = "jbloggs";
  t->TimeLastModified = "2026-11-02 09:15:00";

  auto number = t->CreateExtractZones();
  number->FieldName = "InvoiceNumber";
  number->CreateAnchorRef()->Name = "Invoice No";
  number->DataTypeOverride = 1;
  number->PatternOverride = "INV-####";
  number->PatternModeOverride = 3;
  auto z = number->CreateExtractZone();
  z->Left("1500");
  z->Top("400");
  z->Width("600");
  z->Height("80");
  auto date = t->CreateExtractZones();
  date->FieldName = "InvoiceDate";
  date->DataLocationOverride = 0;
  date->AutoTemplate = 0;
  z = date->CreateExtractZone();
  z->Left("1500");
  z->Top("500");
  z->Width("600");
  z->Height("80");
  z = date->CreateExtractZone();
  z->Left("200");
  z->Top("520");
  z->Width("500");
  z->Height("80");

  auto vat = t->CreatePseudoExtractZones();
  vat->FieldName = "VatRegNo";
  vat->CaptionSearch = "VAT Reg";
  vat->DataLocationOverride = -1;
  z = vat->CreateExtractZone();
  z->Left("100");
  z->Top("3300");
  z->Width("900");
  z->Height("60");

  auto table = t->CreateLineTable();
  table->Left = 100;
  table->Top = 900;
  table->Width = 2200;
  table->Height = 1800;
  auto top = table->CreateTopAnchorRef();
  top->Name = "Description";
  top->XOffset = 110;
  top->YOffset = 880;
  auto bottom = table->CreateBottomAnchorRef();
  bottom->Name = "Sub-total";
  bottom->XOffset = 1600;
  bottom->YOffset = 2750;
  table->Location = kLocationAll;
  table->PageExtract = 1;
  table->IgnorePages.Add(3);
  table->SheetNo = 1;
  for (auto [left, width, name] :
       {std::tuple{100, 1200, "Description"}, std::tuple{1300, 300, "Qty"},
        std::tuple{1600, 600, "LineTotal"}}) {
    auto col = table->CreateColumn();
    col->Left = left;
    col->Width = width;
    col->Name = name;
  }

  auto rule = t->CreateLineDataRules();
  rule->PropagateFrom = "Description";
  rule->PropagateTo = "Description";
  rule->PropagateRows = "NEXT";
  t->LineDataPartition = 1;
  t->LineDataDiscardStart = 1;
  t->LineDataDiscardEnd = 2;
  t->LineDataEntitySpaceMax("120");
  t->LineDataRowSpaceMax("60");
  auto start = t->CreateLineDataCondition();
  start->Name = "Qty";
  start->Operation = "NOT EMPTY";
  auto end = t->CreateLineDataEndCondition();
  end->Name = "Description";
  end->Operation = "=";
  end->value = "Carried forward";
  auto repeat = t->CreateLineDataRptCondition();
  repeat->Name = "LineTotal";
  repeat->Operation = "EMPTY";

  auto qty = t->CreateLineHeader();
  qty->Name = "Qty";
  qty->DataType = 2;
  qty->PtnMode = 1;
  auto code = t->CreateLineHeader();
  code->Name = "ProductCode";
  code->Pattern = "AA-###";
  return t;
}

}  // namespace pelinor::testing

#endif  // PELINOR_TESTS_TEMPLATE_TEMPLATE_FIXTURES_H_
