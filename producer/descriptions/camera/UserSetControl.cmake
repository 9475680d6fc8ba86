zq_category(UserSetControl "Settings that the camera keeps.")
zq_enumeration(UserSetSelector 0x0D00 RW "The set that the commands are about." SELECTS UserSetLoad UserSetSave
    ENTRIES Default=0 UserSet0=1 UserSet1=2)
zq_formula(UserSetReadOnly "SET = 0" SET=UserSetSelectorReg)
zq_command(UserSetLoad 0x0D04 "Takes the settings from the set." LOCKED)
zq_command(UserSetSave 0x0D08 "Puts the settings into the set." LOCKED_BY UserSetReadOnly)
zq_enumeration(UserSetDefault 0x0D0C RW "The set that is loaded when the camera is opened."
    ENTRIES Default=0 UserSet0=1 UserSet1=2)
