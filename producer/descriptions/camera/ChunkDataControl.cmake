# Ids and lengths are those of the table in sim/Chunks.cpp. The data is little endian on every transport.
zq_category(ChunkDataControl "What is sent together with the image.")
zq_boolean(ChunkModeActive 0x0800 RW "Whether frames carry chunks." LOCKED STREAMABLE)
zq_enumeration(ChunkSelector 0x0804 RW "The chunk that ChunkEnable is about." SELECTS ChunkEnable
    ENTRIES Image=0 FrameID=1 Timestamp=2 ExposureTime=3 Gain=4 Width=5 Height=6 OffsetX=7 OffsetY=8 PixelFormat=9
    LineStatusAll=10 PayloadCRC16=11)
zq_boolean(ChunkEnable 0x0808 RW "Whether frames carry this chunk." LOCKED_BY ChunkEnableLocked NOCACHE)
zq_formula(ChunkEnableLocked "(LOCKED = 1) || (ACTIVE = 0)" LOCKED=TLParamsLocked ACTIVE=ChunkModeActiveReg)

# zq_chunk(<what> <type> <kind of register> <chunk id> <length> <tooltip> [options])
function(zq_chunk what type kind id length tooltip)
    zq_feature(${type} Chunk${what} "${tooltip}" "        <pValue>Chunk${what}Reg</pValue>\n" ${ARGN})
    zq_register(Chunk${what}Reg ${kind} 0 ${length} RO PORT Chunk${what}Port ENDIANESS LittleEndian)
    zq_port(Chunk${what}Port "The chunk of this frame." CHUNK_ID ${id})
endfunction()

zq_port(ChunkImagePort "The image as a chunk." CHUNK_ID 00000001)
zq_chunk(FrameID Integer Int 00001001 8 "Id of the frame.")
zq_chunk(Timestamp Integer Int 00001002 8 "Time of the frame." UNIT ns)
zq_chunk(ExposureTime Float Float 00001003 8 "How long the frame was exposed." UNIT us)
zq_chunk(Gain Float Float 00001004 8 "How much the frame was amplified." UNIT dB)
zq_chunk(Width Integer Int 00001005 4 "Width of the image." UNIT px)
zq_chunk(Height Integer Int 00001006 4 "Height of the image." UNIT px)
zq_chunk(OffsetX Integer Int 00001007 4 "Left edge of the image." UNIT px)
zq_chunk(OffsetY Integer Int 00001008 4 "Upper edge of the image." UNIT px)
zq_chunk(PixelFormat Enumeration Int 00001009 4 "Format of a pixel." ENTRIES ${PIXEL_FORMATS})
zq_chunk(LineStatusAll Integer Int 0000100A 4 "State of all lines when the frame was taken." REPRESENTATION HexNumber)
zq_chunk(PayloadCRC16 Integer Int 0000100B 4 "CRC-16 of the image with polynomial 0x1021 and start value 0xFFFF."
    REPRESENTATION HexNumber)
