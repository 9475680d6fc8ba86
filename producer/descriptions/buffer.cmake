# The features of a buffer. Addresses are those of gentl/BufferPort.cpp.
function(zq_buffer_integer name address length tooltip)
    zq_integer(${name} ${address} ${length} RO "${tooltip}" VISIBILITY Expert NOCACHE PORT BufferPort
        ENDIANESS LittleEndian ${ARGN})
endfunction()

zq_category(BufferInformation "What is known of the frame in the buffer.")
zq_string(BufferID 0x0100 64 RO "Identifier of the buffer." PORT BufferPort)
zq_enumeration(BufferPayloadType 0x0300 RO "What the payload is." VISIBILITY Expert NOCACHE PORT BufferPort
    ENDIANESS LittleEndian ENTRIES Unknown=0 Image=1 RawData=2 File=3 ChunkData=4 JPEG=5 JPEG2000=6 H264=7 ChunkOnly=8
    MultiPart=10)
zq_boolean(BufferIsIncomplete 0x0304 RO "Whether some of the payload is missing." VISIBILITY Expert NOCACHE
    PORT BufferPort ENDIANESS LittleEndian)
zq_buffer_integer(BufferSize 0x0308 8 "Bytes that the buffer has room for." UNIT B)
zq_buffer_integer(BufferSizeFilled 0x0310 8 "Bytes that the payload has." UNIT B)
zq_buffer_integer(BufferFrameID 0x0318 8 "Id of the frame.")
zq_buffer_integer(BufferTimestamp 0x0320 8 "Time of the frame." UNIT ns)
zq_buffer_integer(BufferWidth 0x0328 8 "Width of the image." UNIT px)
zq_buffer_integer(BufferHeight 0x0330 8 "Height of the image." UNIT px)
zq_buffer_integer(BufferXOffset 0x0338 8 "Left edge of the image." UNIT px)
zq_buffer_integer(BufferYOffset 0x0340 8 "Upper edge of the image." UNIT px)
zq_buffer_integer(BufferPixelFormat 0x0348 8 "Code of the pixel format." REPRESENTATION HexNumber)
zq_list_feature(BufferData)
zq_append("    <Register Name=\"BufferData\" NameSpace=\"Standard\">
        <ToolTip>The bytes of the buffer.</ToolTip>
        <Visibility>Guru</Visibility>
        <Address>0x100000000</Address>
        <pLength>BufferSizeReg</pLength>
        <AccessMode>RO</AccessMode>
        <pPort>BufferPort</pPort>
        <Cachable>NoCache</Cachable>
    </Register>

")
