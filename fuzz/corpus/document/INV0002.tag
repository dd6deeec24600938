ver0.917
DocStatus:1
DocMessage:Tag has not been validated
Invoices
FieldsCount:4
Field1Name:InvoiceNumber
Field1Value:INV-000981
Field1Status:1
Field1Message:Tag has not been validated
Field1DataLocation:1
Field1Coords:1650:410:520:70
Field2Name:InvoiceDate
Field2Value:14/05/2004
Field2Status:1
Field2Message:Tag has not been validated
Field2DataLocation:1
Field2Coords:1650:500:520:70
Field3Name:TotalAmount
Field3Value:240.00
Field3Status:1
Field3Message:Tag has not been validated
Field3DataLocation:-6
Field3Coords:1500:2900:400:60
Field4Name:SupplierPostCode
Field4Value:EC1A 1BB
Field4Status:1
Field4Message:Tag has not been validated
Field4DataLocation:1
Field4Coords:200:380:300:50
PseudoFieldsCount:1
Field1Name:SupplierId
Field1Value:NWND02
Field1DataLocation:0
Field1Coords:0:0:0:0
