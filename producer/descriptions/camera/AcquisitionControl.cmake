zq_category(AcquisitionControl "When images are taken.")
zq_enumeration(AcquisitionMode 0x0500 RW "How many frames an acquisition has." LOCKED STREAMABLE
    ENTRIES SingleFrame=1 MultiFrame=2 Continuous=3)
zq_integer(AcquisitionFrameCount 0x0504 4 RW "Number of frames in mode MultiFrame." LOCKED STREAMABLE
    MIN 1 MAX 2147483647 INC 1)
zq_command(AcquisitionStart 0x0508 "Starts the acquisition.")
zq_command(AcquisitionStop 0x050C "Stops the acquisition after the frame at hand.")
zq_boolean(AcquisitionFrameRateEnable 0x0520 RW "On: frames come by the clock, and one that finds no queued buffer \
is lost. Off: as fast as it goes, each frame waiting for a queued buffer." STREAMABLE)
zq_float(AcquisitionFrameRate 0x0510 8 RW "Frames per second while AcquisitionFrameRateEnable is on." STREAMABLE
    MIN 0.1 PMAX AcquisitionFrameRateMaxReg UNIT Hz)
zq_register(AcquisitionFrameRateMaxReg Float 0x0518 8 RO NOCACHE)
zq_float(AcquisitionResultingFrameRate 0x0538 8 RO "The frame rate that results, not above the inverse of the \
exposure time, 0 when it goes as fast as it can." VISIBILITY Expert NOCACHE UNIT Hz)
zq_boolean(AcquisitionActive 0x0530 RO "Whether the camera acquires, or waits for the trigger to." VISIBILITY Expert NOCACHE)
zq_float(ExposureTime 0x0528 8 RW "How long a frame is exposed." STREAMABLE MIN 10 MAX 1000000 UNIT us)
zq_enumeration(ExposureAuto 0x0540 RW "Off: ExposureTime stays as it is written. Once: it is adjusted one time. \
Continuous: it follows the brightness of the scene." STREAMABLE ENTRIES Off=0 Once=1 Continuous=2)
zq_enumeration(TriggerSelector 0x0550 RW "The trigger that the next features are about: of each frame, or of the whole \
acquisition." SELECTS TriggerMode TriggerSoftware TriggerSource TriggerActivation TriggerDelay
    ENTRIES FrameStart=0 AcquisitionStart=1)
zq_enumeration(TriggerMode 0x0554 RW "On: each frame, or the first of an acquisition, waits for a trigger." STREAMABLE
    INVALIDATED_BY TriggerSelectorReg ENTRIES Off=0 On=1)
zq_command(TriggerSoftware 0x0558 "Triggers, with Software as the source.")
zq_enumeration(TriggerSource 0x055C RW "Where the trigger comes from." STREAMABLE INVALIDATED_BY TriggerSelectorReg
    ENTRIES Software=0 Line0=1 Line1=2 Counter0End=3 Timer0End=4 Action0=5 Counter1End=6 Timer1End=7)
zq_enumeration(TriggerActivation 0x0560 RW "The edge of a line that triggers." STREAMABLE
    INVALIDATED_BY TriggerSelectorReg ENTRIES RisingEdge=0 FallingEdge=1 AnyEdge=2)
zq_float(TriggerDelay 0x0568 8 RW "Time from the trigger to the exposure." STREAMABLE INVALIDATED_BY TriggerSelectorReg
    MIN 0 MAX 1000000 UNIT us)
