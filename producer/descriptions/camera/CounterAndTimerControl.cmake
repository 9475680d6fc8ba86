zq_category(CounterAndTimerControl "What counts, and what waits.")
zq_enumeration(CounterSelector 0x0C00 RW "The counter that the next features are about."
    SELECTS CounterEventSource CounterDuration CounterValue CounterReset ENTRIES Counter0=0 Counter1=1)
zq_enumeration(CounterEventSource 0x0C04 RW "What is counted." STREAMABLE NOCACHE
    ENTRIES Off=0 FrameStart=1 ExposureEnd=2 Line0=3 Line1=4 Timer0End=5 Timer1End=7)
zq_integer(CounterDuration 0x0C08 4 RW "The count at which the counter ends and begins again." STREAMABLE NOCACHE
    MIN 1 MAX 2147483647 INC 1)
zq_integer(CounterValue 0x0C0C 4 RO "The count so far." NOCACHE)
zq_command(CounterReset 0x0C10 "Begins again at 0.")
zq_enumeration(TimerSelector 0x0C40 RW "The timer that the next features are about."
    SELECTS TimerTriggerSource TimerDuration TimerDelay TimerReset TimerStatus ENTRIES Timer0=0 Timer1=1)
zq_enumeration(TimerTriggerSource 0x0C44 RW "What starts the timer." STREAMABLE NOCACHE
    ENTRIES Off=0 FrameStart=1 ExposureEnd=2 Line0=3 Line1=4 Timer0End=5 Counter0End=6 Timer1End=7 Counter1End=8)
zq_float(TimerDuration 0x0C48 8 RW "How long the timer is active." STREAMABLE NOCACHE MIN 10 MAX 10000000 UNIT us)
zq_float(TimerDelay 0x0C50 8 RW "Time from its start until it is active." STREAMABLE NOCACHE MIN 0 MAX 10000000 UNIT us)
zq_command(TimerReset 0x0C58 "Starts the timer.")
zq_enumeration(TimerStatus 0x0C5C RO "Whether the timer is active." NOCACHE ENTRIES TimerIdle=0 TimerActive=1)
