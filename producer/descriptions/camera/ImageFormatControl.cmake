zq_category(ImageFormatControl "Size and format of the image.")
zq_integer(SensorWidth 0x0400 4 RO "Width of the sensor." VISIBILITY Expert UNIT px)
zq_integer(SensorHeight 0x0404 4 RO "Height of the sensor." VISIBILITY Expert UNIT px)
zq_integer(WidthMax 0x0438 4 RO "Largest width of the image." VISIBILITY Expert UNIT px
    INVALIDATED_BY BinningHorizontalReg)
zq_integer(HeightMax 0x043C 4 RO "Largest height of the image." VISIBILITY Expert UNIT px
    INVALIDATED_BY BinningVerticalReg)
zq_integer(Width 0x0410 4 RW "Width of the image." LOCKED STREAMABLE MIN 8 PMAX WidthLimit INC 8 UNIT px
    INVALIDATED_BY BinningHorizontalReg)
zq_integer(Height 0x0414 4 RW "Height of the image." LOCKED STREAMABLE MIN 1 PMAX HeightLimit INC 1 UNIT px
    INVALIDATED_BY BinningVerticalReg)
zq_integer(OffsetX 0x0418 4 RW "Left edge of the image on the sensor." STREAMABLE MIN 0 PMAX OffsetXLimit INC 8
    UNIT px INVALIDATED_BY BinningHorizontalReg)
zq_integer(OffsetY 0x041C 4 RW "Upper edge of the image on the sensor." STREAMABLE MIN 0 PMAX OffsetYLimit INC 1
    UNIT px INVALIDATED_BY BinningVerticalReg)
zq_formula(WidthLimit "WHOLE - TAKEN" WHOLE=WidthMaxReg TAKEN=OffsetXReg)
zq_formula(HeightLimit "WHOLE - TAKEN" WHOLE=HeightMaxReg TAKEN=OffsetYReg)
zq_formula(OffsetXLimit "WHOLE - TAKEN" WHOLE=WidthMaxReg TAKEN=WidthReg)
zq_formula(OffsetYLimit "WHOLE - TAKEN" WHOLE=HeightMaxReg TAKEN=HeightReg)
zq_integer(BinningHorizontal 0x0428 4 RW "Columns of the sensor that make one of the image. The region is cut to \
what remains." LOCKED STREAMABLE VALID 1 2 4)
zq_integer(BinningVertical 0x042C 4 RW "Rows of the sensor that make one of the image. The region is cut to what \
remains." LOCKED STREAMABLE VALID 1 2 4)
zq_boolean(ReverseX 0x0430 RW "Swaps left and right." STREAMABLE)
zq_boolean(ReverseY 0x0434 RW "Swaps top and bottom." STREAMABLE)
zq_enumeration(PixelFormat 0x0420 RW "Format of a pixel." LOCKED STREAMABLE ENTRIES ${PIXEL_FORMATS})
zq_enumeration(ComponentSelector 0x0444 RW "The component that ComponentEnable is about." SELECTS ComponentEnable
    ENTRIES Intensity=0 Confidence=1)
zq_formula(ComponentEnableLocked "(COMPONENT = 0) || (LOCKED = 1)" COMPONENT=ComponentSelectorReg LOCKED=TLParamsLocked)
zq_boolean(ComponentEnable 0x0448 RW "Whether frames have this component; with more than one, frames have parts."
    NOCACHE LOCKED_BY ComponentEnableLocked)
zq_enumeration(TestPattern 0x0424 RW "What the camera sees." STREAMABLE
    ENTRIES GreyDiagonalRampMoving=0 GreyHorizontalRampMoving=1 GreyVerticalRampMoving=2 Black=3 White=4
    GreyDiagonalRamp=5 GreyHorizontalRamp=6 GreyVerticalRamp=7 ColorBar=8 ColorBarMoving=9 ColorRampMoving=10
    HorizontalLineMoving=11 VerticalLineMoving=12 FrameCounter=13 Noise=14 NoiseMoving=15 Picture=16)
zq_integer(SimulationSeed 0x0440 4 RW "What the noise of the test patterns follows from." STREAMABLE
    MIN 0 MAX 4294967295 INC 1)
