zq_category(ActionControl "Commands that reach many cameras at once.")
zq_integer(ActionDeviceKey 0x0E00 4 WO "Only commands with this key are followed." VISIBILITY Guru MIN 0
    MAX 4294967295)
zq_integer(ActionSelector 0x0E04 4 RW "The action that the next features are about." VISIBILITY Guru
    SELECTS ActionGroupKey ActionGroupMask MIN 0 MAX 0)
zq_integer(ActionGroupKey 0x0E08 4 RW "The key of the action's group." VISIBILITY Guru MIN 0 MAX 4294967295)
zq_integer(ActionGroupMask 0x0E0C 4 RW "Bits of which a command needs one." VISIBILITY Guru MIN 0 MAX 4294967295
    REPRESENTATION HexNumber)
