zq_category(FileAccessControl "Files in the camera.")
zq_enumeration(FileSelector 0x0F00 RW "The file that the next features are about."
    SELECTS FileOperationSelector FileOperationExecute FileOpenMode FileAccessBuffer FileAccessOffset FileAccessLength
    FileOperationStatus FileOperationResult FileSize ENTRIES UserFile=0 Information=1)
zq_enumeration(FileOperationSelector 0x0F04 RW "What is to be done with it."
    SELECTS FileOperationExecute FileAccessOffset FileAccessLength FileOperationStatus FileOperationResult
    ENTRIES Open=0 Close=1 Read=2 Write=3 Delete=4)
zq_command(FileOperationExecute 0x0F08 "Does it.")
zq_enumeration(FileOpenMode 0x0F0C RW "What the file is opened for; for Write alone it is emptied."
    ENTRIES Read=0 Write=1 ReadWrite=2)
zq_bytes(FileAccessBuffer 0x2000 4096 "The bytes that were read or are to be written.")
zq_integer(FileAccessOffset 0x0F10 8 RW "Where in the file." MIN 0 MAX 1048576 INC 1)
zq_integer(FileAccessLength 0x0F18 8 RW "How many bytes." MIN 0 MAX 4096 INC 1)
zq_enumeration(FileOperationStatus 0x0F20 RO "How the last operation ended." NOCACHE ENTRIES Success=0 Failure=1)
zq_integer(FileOperationResult 0x0F28 8 RO "How many bytes the last operation read or wrote." NOCACHE)
zq_integer(FileSize 0x0F30 8 RO "Length of the file." NOCACHE UNIT B)
