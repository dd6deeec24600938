ver0.920
NORTHWIND TRADING INVOICE
0
Mono 200 dpi
Invoices
TemplateIDDatumX:1500
TemplateIDDatumY:90
UserData:Northwind Trading
UserDataPrimary:0
ExtractType:1
Disambiguate:0
FieldCount:2
Field1FieldName:InvoiceNumber
Field1AnchorRef:Invoice
Field1OverrideCount:1
Field1Pattern:NW00000
Field1ZoneCount:1
Field1Zone1Left:1500
Field1Zone1Top:300
Field1Zone1Width:450
Field1Zone1Height:70
Field2FieldName:TotalAmount
Field2AnchorRef:
Field2OverrideCount:0
Field2ZoneCount:1
Field2Zone1Left:1800
Field2Zone1Top:2800
Field2Zone1Width:400
Field2Zone1Height:80
PseudoFieldCount:0
