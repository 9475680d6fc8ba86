zq_category(TransportLayerControl "How images are sent.")
zq_integer(TLParamsLocked 0x0600 4 RW
    "1 while a host receives images: what the size of an image depends on is locked." VISIBILITY Invisible
    MIN 0 MAX 1 INC 1)
zq_integer(PayloadSize 0x0608 8 RO "Bytes that a frame needs." VISIBILITY Expert NOCACHE UNIT B)
