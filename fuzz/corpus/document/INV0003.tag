ver0.946
DocStatus:1
DocMessage:Tag has not been validated
Invoices
LastSheetIndex:2
FieldsCount:7
Field1Name:InvoiceNumber
Field1Value:INV-004522
Field1Status:1
Field1Message:Tag has not been validated
Field1DataLocation:1
Field1DataType:0
Field1Coords:1650:410:520:70
Field2Name:InvoiceDate
Field2Value:3. März 2004
Field2Status:1
Field2Message:Tag has not been validated
Field2DataLocation:1
Field2DataType:0
Field2Coords:1650:500:520:70
Field3Name:TotalAmount
Field3Value:£ 96.0O
Field3Status:1
Field3Message:Tag has not been validated
Field3DataLocation:-6
Field3DataType:0
Field3Coords:1500:2900:400:60
Field4Name:SupplierPostCode
Field4Value:M1 IAA
Field4Status:1
Field4Message:Tag has not been validated
Field4DataLocation:1
Field4DataType:0
Field4Coords:200:380:300:50
Field5Name:VATNumber
Field5Value:GB12345678
Field5Status:1
Field5Message:Tag has not been validated
Field5DataLocation:1
Field5DataType:0
Field5Coords:200:460:600:50
Field6Name:DueDate
Field6Value:1.2.03
Field6Status:1
Field6Message:Tag has not been validated
Field6DataLocation:1
Field6DataType:0
Field6Coords:1650:760:520:70
Field7Name:SortCode
Field7Value:2O-45-l7
Field7Status:1
Field7Message:Tag has not been validated
Field7DataLocation:1
Field7DataType:0
Field7Coords:200:3100:300:50
PseudoFieldsCount:0
LLAnchorCount:0
DocEndMarksCount:0
LineCount:0
ColumnCount:0
