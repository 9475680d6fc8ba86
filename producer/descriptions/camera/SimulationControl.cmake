zq_category(SimulationControl "What only a simulated camera can do.")
zq_command(SimulationDeviceLost 0x0700 "The camera is gone from its interface until the device is opened again."
    VISIBILITY Guru)
