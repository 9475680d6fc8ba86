zq_category(LUTControl "A table from brightness to brightness.")
zq_enumeration(LUTSelector 0x0A00 RW "The table that the next features are about." SELECTS LUTEnable LUTIndex LUTValue
    LUTValueAll ENTRIES Luminance=0)
zq_boolean(LUTEnable 0x0A04 RW "Whether the table is used." STREAMABLE)
zq_integer(LUTIndex 0x0A08 4 RW "The entry that LUTValue is about." SELECTS LUTValue MIN 0 MAX 255 INC 1)
zq_integer(LUTValue 0x0A0C 4 RW "The entry, in levels of 8 bits." NOCACHE MIN 0 MAX 255 INC 1)
zq_bytes(LUTValueAll 0x3000 256 "All entries, one byte each.")
