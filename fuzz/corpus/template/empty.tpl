ver0.946

0


TemplateIDDatumX:
TemplateIDDatumY:
UserData:
UserDataPrimary:0
ExtractType:0
Disambiguate:0
LineLevel:0
OCRAllPages:0
FlattenDuplex:0
DocEndMark:
DocEndMarkInclusive:0
DocEndMarkSideMode:0
ExpectedAttachments:0
User:
LastModified:
FieldCount:0
PseudoFieldCount:0
LineTableCount:0
LineLevelRules:0
LineDataPartition:0
LineDataDiscardStart:0
LineDataDiscardEnd:0
LineDataEntitySpaceMax:100
LineDataRowSpaceMax:70
LineLevelStartExpr:0
LineLevelEndExpr:0
LineLevelRptExpr:0
LineHeaderCount:0
