ver0.946
ACME LTD INVOICE
2
Mono 300, duplex
Invoices
TemplateIDDatumX:1210
TemplateIDDatumY:140
UserData:supplier 4711, net 30
UserDataPrimary:1
ExtractType:2
Disambiguate:3
LineLevel:1
OCRAllPages:-1
FlattenDuplex:1
DocEndMark:Carried forward:150:3100
DocEndMarkInclusive:0
DocEndMarkSideMode:2
ExpectedAttachments:4
User:jbloggs
LastModified:2026-11-02 09:15:00
FieldCount:2
Field1FieldName:InvoiceNumber
Field1AnchorRef:Invoice No
Field1OverrideCount:3
Field1Type:1
Field1Pattern:INV-####
Field1PatternMode:3
Field1AutoTemplate:1
Field1ZoneCount:1
Field1Zone1Left:1500
Field1Zone1Top:400
Field1Zone1Width:600
Field1Zone1Height:80
Field2FieldName:InvoiceDate
Field2AnchorRef:
Field2OverrideCount:1
Field2Location:0
Field2AutoTemplate:0
Field2ZoneCount:2
Field2Zone1Left:1500
Field2Zone1Top:500
Field2Zone1Width:600
Field2Zone1Height:80
Field2Zone2Left:200
Field2Zone2Top:520
Field2Zone2Width:500
Field2Zone2Height:80
PseudoFieldCount:1
Field1FieldName:VatRegNo
Field1CaptionSearch:VAT Reg
Field1Location:-1
Field1ZoneCount:1
Field1Zone1Left:100
Field1Zone1Top:3300
Field1Zone1Width:900
Field1Zone1Height:60
LineTableCount:1
Table1Left:100
Table1Top:900
Table1Width:2200
Table1Height:1800
Table1TopAnchorRef:Description:110:880
Table1BottomAnchorRef:Sub-total:1600:2750
Table1Location:ALL
Table1PageExtract:1
Table1IgnorePagesCount:1
Table1IgnorePage 1:3
Table1SheetNo:1
Table1ColsCount:3
Table1Col1Left:100
Table1Col1Width:1200
Table1Col1Name:Description
Table1Col2Left:1300
Table1Col2Width:300
Table1Col2Name:Qty
Table1Col3Left:1600
Table1Col3Width:600
Table1Col3Name:LineTotal
LineLevelRules:1
DataPropagateFrom1:Description
DataPropagateTo1:Description
DataPropagateRows1:NEXT
LineDataPartition:1
LineDataDiscardStart:1
LineDataDiscardEnd:2
LineDataEntitySpaceMax:120
LineDataRowSpaceMax:60
LineLevelStartExpr:1
Expr1:Qty:NOT EMPTY
LineLevelEndExpr:1
Expr1:Description:=:Carried forward
LineLevelRptExpr:1
Expr1:LineTotal:EMPTY
LineHeaderCount:2
LineHeader1Name:Qty
LineHeader1OverrideCount:2
LineHeader1DataType:2
LineHeader1PatternMode:1
LineHeader2Name:ProductCode
LineHeader2OverrideCount:1
LineHeader2Pattern:AA-###
