ver0.946
DocStatus:1
DocMessage:Field TotalAmount: amount expected
Invoices
LastSheetIndex:2
FieldsCount:2
Field1Name:InvoiceNumber
Field1Value:INV-000123
Field1Status:0
Field1Message:
Field1DataLocation:1
Field1DataType:1
Field1Coords:1650:410:520:70
Field2Name:TotalAmount
Field2Value:1,234.50
Field2Status:1
Field2Message:Amount expected, e.g. 1234.50
Field2DataLocation:-6
Field2DataType:4
Field2Coords:1500:2900:400:60
PseudoFieldsCount:1
Field1Name:SupplierId
Field1Value:ACME01
Field1DataLocation:1
Field1Coords:0:0:0:0
LLAnchorCount:1
LLAnchor1Name:Description
LLAnchor1DataLocation:1
LLAnchor1Coords:100:900:300:40
DocEndMarksCount:1
DocEndMark1Name:Carried forward
DocEndMark1DataLocation:2
DocEndMark1Coords:160:3050:400:40
LineCount:2
ColumnCount:2
Line1Status:0
Line1Message:
Line1Coords:100:960:1800:50
Line1DataLocation:1
Line1Col1Name:Description
Line1Col1Value:A4 paper, 80gsm
Line1Col1Status:0
Line1Col1Message:
Line1Col2Name:Quantity
Line1Col2Value:10
Line1Col2Status:0
Line1Col2Message:
Line2Status:1
Line2Message:check quantity
Line2Coords:100:1010:1800:50
Line2DataLocation:1
Line2Col1Name:Description
Line2Col1Value:Toner
Line2Col1Status:0
Line2Col1Message:
Line2Col2Name:Quantity
Line2Col2Value:I0
Line2Col2Status:1
Line2Col2Message:Pattern validation failed.
