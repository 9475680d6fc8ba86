zq_category(SimulationControl "What only a simulated camera can do: fail on purpose.")
zq_command(SimulationDeviceLost 0x0700 "The camera is gone from its interface." VISIBILITY Guru)
zq_command(SimulationInterfaceLost 0x070C "The whole interface is gone, with every camera on it." VISIBILITY Guru)
zq_integer(SimulationLossDelay 0x0704 4 RW "Time from either command to the loss." VISIBILITY Guru MIN 0 MAX 3600000
    UNIT ms)
zq_integer(SimulationReturnTime 0x0708 4 RW "Time after which what was lost is found again. 0: it can be opened anew \
at once." VISIBILITY Guru MIN 0 MAX 3600000 UNIT ms)

function(zq_every name address tooltip)
    zq_integer(${name} ${address} 4 RW "${tooltip} in every n-th frame of an acquisition, 0 never." VISIBILITY Guru
        STREAMABLE MIN 0 MAX 2147483647)
endfunction()
zq_every(SimulationDropEvery 0x0710 "Nothing is sent")
zq_every(SimulationIncompleteEvery 0x0714 "The second half is missing")
zq_every(SimulationLateEvery 0x0718 "The delivery is late")
zq_integer(SimulationLateTime 0x071C 4 RW "How late such a delivery is." VISIBILITY Guru STREAMABLE MIN 1 MAX 3600000
    UNIT ms)
zq_every(SimulationLargerEvery 0x0720 "There is more data than the buffer has room for")
zq_every(SimulationBadChunksEvery 0x0724 "The last tag of the chunks is wrong")
zq_every(SimulationErrorEvery 0x0728 "The event Error is sent")
zq_integer(SimulationErrorCode 0x072C 4 RW "What the event Error has in EventErrorCode." VISIBILITY Guru STREAMABLE
    MIN 0 MAX 4294967295)
zq_command(SimulationErrorEvent 0x0730 "Sends the event Error." VISIBILITY Guru)
zq_integer(SimulationReadErrorAddress 0x0740 8 RW "Reading the register at this address fails; -1 none."
    VISIBILITY Guru SIGNED MIN -1 REPRESENTATION PureNumber)
zq_integer(SimulationWriteErrorAddress 0x0748 8 RW "Writing the register at this address fails; -1 none."
    VISIBILITY Guru SIGNED MIN -1 REPRESENTATION PureNumber)
zq_integer(SimulationPortErrorCode 0x0750 8 RW "The result code of such a failure." VISIBILITY Guru SIGNED
    MIN -1023 MAX -1001)
zq_string(SimulationImageFolder 0x4000 1024 RW "Folder with PNG, PGM, PPM and TIFF files, on the machine of the host. \
The test pattern Picture shows them one after the other, resized to the region." VISIBILITY Guru)
zq_boolean(SimulationLine0 0x0760 RW "Level of the input Line0." VISIBILITY Guru)
zq_boolean(SimulationLine1 0x0764 RW "Level of the input Line1." VISIBILITY Guru)
zq_integer(SimulationPortDelay 0x0758 4 RW "Time that every access to the registers takes." VISIBILITY Guru
    MIN 0 MAX 10000 UNIT ms)
