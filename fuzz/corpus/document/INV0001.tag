ver0.946
DocStatus:1
DocMessage:Tag has not been validated
Invoices
LastSheetIndex:1
FieldsCount:9
Field1Name:InvoiceNumber
Field1Value:INV-0O1234
Field1Status:1
Field1Message:Tag has not been validated
Field1DataLocation:1
Field1DataType:0
Field1Coords:1650:410:520:70
Field2Name:InvoiceDate
Field2Value:12 0CT 2003
Field2Status:1
Field2Message:Tag has not been validated
Field2DataLocation:1
Field2DataType:0
Field2Coords:1650:500:520:70
Field3Name:TotalAmount
Field3Value:£1,234.5O
Field3Status:1
Field3Message:Tag has not been validated
Field3DataLocation:-6
Field3DataType:0
Field3Coords:1500:2900:400:60
Field4Name:SupplierPostCode
Field4Value:SW1A1AA
Field4Status:1
Field4Message:Tag has not been validated
Field4DataLocation:1
Field4DataType:0
Field4Coords:200:380:300:50
Field5Name:NetAmount
Field5Value:1,028.75
Field5Status:1
Field5Message:Tag has not been validated
Field5DataLocation:1
Field5DataType:0
Field5Coords:1500:2700:400:60
Field6Name:VATAmount
Field6Value:S5
Field6Status:1
Field6Message:Tag has not been validated
Field6DataLocation:1
Field6DataType:0
Field6Coords:1500:2800:400:60
Field7Name:VATNumber
Field7Value:GB 123 4567 89
Field7Status:1
Field7Message:Tag has not been validated
Field7DataLocation:1
Field7DataType:0
Field7Coords:200:460:600:50
Field8Name:PurchaseOrder
Field8Value:P0-004521
Field8Status:1
Field8Message:Tag has not been validated
Field8DataLocation:1
Field8DataType:0
Field8Coords:1650:590:520:70
Field9Name:Currency
Field9Value:GBP
Field9Status:1
Field9Message:Tag has not been validated
Field9DataLocation:1
Field9DataType:0
Field9Coords:1650:680:200:70
PseudoFieldsCount:1
Field1Name:SupplierId
Field1Value:ACME01
Field1DataLocation:0
Field1Coords:0:0:0:0
LLAnchorCount:1
LLAnchor1Name:Description
LLAnchor1DataLocation:1
LLAnchor1Coords:140:1180:420:50
DocEndMarksCount:1
DocEndMark1Name:Carried forward
DocEndMark1DataLocation:1
DocEndMark1Coords:160:3050:520:50
LineCount:3
ColumnCount:3
Line1Status:1
Line1Message:
Line1Coords:140:1240:1800:50
Line1DataLocation:1
Line1Col1Name:Description
Line1Col1Value:A4 copier paper, 80gsm
Line1Col1Status:1
Line1Col1Message:
Line1Col2Name:Quantity
Line1Col2Value:1O
Line1Col2Status:1
Line1Col2Message:
Line1Col3Name:UnitPrice
Line1Col3Value:2l.50
Line1Col3Status:1
Line1Col3Message:
Line2Status:1
Line2Message:
Line2Coords:140:1300:1800:50
Line2DataLocation:1
Line2Col1Name:Description
Line2Col1Value:Toner cartridge TN-2420
Line2Col1Status:1
Line2Col1Message:
Line2Col2Name:Quantity
Line2Col2Value:2
Line2Col2Status:1
Line2Col2Message:
Line2Col3Name:UnitPrice
Line2Col3Value:64.99
Line2Col3Status:1
Line2Col3Message:
Line3Status:1
Line3Message:
Line3Coords:140:1360:1800:50
Line3DataLocation:1
Line3Col1Name:Description
Line3Col1Value:Delivery
Line3Col1Status:1
Line3Col1Message:
Line3Col2Name:Quantity
Line3Col2Value:l
Line3Col2Status:1
Line3Col2Message:
Line3Col3Name:UnitPrice
Line3Col3Value:7.5O
Line3Col3Status:1
Line3Col3Message:
