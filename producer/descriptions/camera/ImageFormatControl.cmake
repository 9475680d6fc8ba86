zq_category(ImageFormatControl "Size and format of the image.")
zq_integer(SensorWidth 0x0400 4 RO "Width of the sensor." VISIBILITY Expert UNIT px)
zq_integer(SensorHeight 0x0404 4 RO "Height of the sensor." VISIBILITY Expert UNIT px)
zq_alias(Integer WidthMax SensorWidthReg "Largest width of the image." VISIBILITY Expert UNIT px)
zq_alias(Integer HeightMax SensorHeightReg "Largest height of the image." VISIBILITY Expert UNIT px)
zq_integer(Width 0x0410 4 RW "Width of the image." LOCKED STREAMABLE MIN 8 PMAX WidthLimit INC 8 UNIT px)
zq_integer(Height 0x0414 4 RW "Height of the image." LOCKED STREAMABLE MIN 1 PMAX HeightLimit INC 1 UNIT px)
zq_integer(OffsetX 0x0418 4 RW "Left edge of the image on the sensor." STREAMABLE MIN 0 PMAX OffsetXLimit INC 8
    UNIT px)
zq_integer(OffsetY 0x041C 4 RW "Upper edge of the image on the sensor." STREAMABLE MIN 0 PMAX OffsetYLimit INC 1
    UNIT px)
zq_formula(WidthLimit "WHOLE - TAKEN" WHOLE=SensorWidthReg TAKEN=OffsetXReg)
zq_formula(HeightLimit "WHOLE - TAKEN" WHOLE=SensorHeightReg TAKEN=OffsetYReg)
zq_formula(OffsetXLimit "WHOLE - TAKEN" WHOLE=SensorWidthReg TAKEN=WidthReg)
zq_formula(OffsetYLimit "WHOLE - TAKEN" WHOLE=SensorHeightReg TAKEN=HeightReg)
zq_enumeration(PixelFormat 0x0420 RW "Format of a pixel." LOCKED STREAMABLE ENTRIES ${PIXEL_FORMATS})
zq_enumeration(TestPattern 0x0424 RW "What the camera sees." STREAMABLE
    ENTRIES GreyDiagonalRampMoving=0 GreyHorizontalRampMoving=1 GreyVerticalRampMoving=2 Black=3 White=4)
