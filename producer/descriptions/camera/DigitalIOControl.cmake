zq_category(DigitalIOControl "Lines into the camera and out of it.")
zq_enumeration(LineSelector 0x0B00 RW "The line that the next features are about."
    SELECTS LineMode LineInverter LineStatus LineSource ENTRIES Line0=0 Line1=1 Line2=2 Line3=3)
zq_enumeration(LineMode 0x0B04 RO "Whether the line is an input." NOCACHE ENTRIES Input=0 Output=1)
zq_boolean(LineInverter 0x0B08 RW "Whether the level of the line is inverted." NOCACHE)
zq_boolean(LineStatus 0x0B0C RO "Level of the line." NOCACHE)
zq_integer(LineStatusAll 0x0B10 4 RO "Levels of all lines, Line0 in the lowest bit." NOCACHE REPRESENTATION HexNumber)
zq_formula(LineSourceLocked "MODE = 0" MODE=LineModeReg)
zq_enumeration(LineSource 0x0B14 RW "What an output shows." NOCACHE LOCKED_BY LineSourceLocked
    ENTRIES Off=0 UserOutput0=1 UserOutput1=2 Timer0Active=3 Counter0Active=4 Timer1Active=5
    Counter1Active=6)
zq_enumeration(UserOutputSelector 0x0B18 RW "The bit that UserOutputValue is about." SELECTS UserOutputValue
    ENTRIES UserOutput0=0 UserOutput1=1)
zq_boolean(UserOutputValue 0x0B1C RW "The bit." NOCACHE)
