# What modules have beyond what every module must have. Each function writes its nodes into MORE_NODES of the caller;
# the templates list them in their categories. Addresses are those of the tables in gentl/.

macro(zq_begin_module port)
    set(CAMERA_ENDIANESS LittleEndian)
    zq_begin_camera()
    set(own NOCACHE HIDDEN PORT ${port})
endmacro()

macro(zq_finish_module)
    zq_finish_camera()
    set(MORE_NODES "${CAMERA_NODES}" PARENT_SCOPE)
endmacro()

# How long a search may take, and how long it takes.
macro(zq_write_update_times feature things)
    zq_integer(${feature} 0x0420 4 RW "How long the update of the list waits for ${things}; after that it fails, and the \
list stays as it was." VISIBILITY Expert MIN 0 MAX 3600000 UNIT ms ${own})
    zq_integer(SimulationUpdateTime 0x0424 4 RW "How long it takes to look for ${things}." VISIBILITY Guru
        MIN 0 MAX 10000 UNIT ms ${own})
endmacro()

function(zq_write_system_features)
    zq_begin_module(TLPort)
    zq_integer(GenTLSFNCVersionMajor 0x030C 4 RO "Major version of the naming convention of the modules."
        VISIBILITY Expert ${own})
    zq_integer(GenTLSFNCVersionMinor 0x0310 4 RO "Minor version of the naming convention of the modules."
        VISIBILITY Expert ${own})
    zq_write_update_times(InterfaceUpdateTimeout interfaces)
    zq_integer(GevInterfaceDefaultGateway 0x0610 4 RO "Gateway of the selected interface; 0 means none." VISIBILITY Expert
        AVAILABLE InterfaceIsGev REPRESENTATION IPV4Address ${own})
    zq_finish_module()
endfunction()

function(zq_write_interface_features technology)
    zq_begin_module(InterfacePort)
    zq_write_update_times(DeviceUpdateTimeout devices)
    zq_string(DeviceUserID 0x0640 64 RO "Name that the user gave the selected device." ${own})
    zq_string(DeviceDisplayName 0x0680 128 RO "Name of the selected device for people." ${own})
    if(technology STREQUAL "gev")
        zq_integer(GevDeviceGateway 0x0728 4 RO "Gateway of the selected device; 0 means none." VISIBILITY Expert
            REPRESENTATION IPV4Address ${own})
        zq_integer(GevDeviceForceIPAddress 0x0740 4 RW "Address that GevDeviceForceIP gives the selected device; 0 means \
its own one." VISIBILITY Expert MIN 0 MAX 4294967295 REPRESENTATION IPV4Address ${own})
        zq_integer(GevDeviceForceSubnetMask 0x0744 4 RW "Subnet mask that GevDeviceForceIP gives the selected device."
            VISIBILITY Expert MIN 0 MAX 4294967295 REPRESENTATION IPV4Address ${own})
        zq_integer(GevDeviceForceGateway 0x0748 4 RW "Gateway that GevDeviceForceIP gives the selected device."
            VISIBILITY Expert MIN 0 MAX 4294967295 REPRESENTATION IPV4Address ${own})
        zq_command(GevDeviceForceIP 0x074C "Gives the selected device another address, until GCCloseLib. It must not be \
open." VISIBILITY Expert ${own})
        zq_integer(GevActionDestinationIPAddress 0x0820 4 RW "Where action commands are sent: to one device, or to all, \
by 255.255.255.255 or the last address of the subnet." VISIBILITY Guru MIN 0 MAX 4294967295
            REPRESENTATION IPV4Address ${own})
    endif()
    zq_finish_module()
endfunction()

function(zq_write_device_features technology)
    zq_begin_module(DevicePort)
    zq_string(DeviceFamilyName 0x0500 64 RO "Family of the device." ${own})
    zq_string(DeviceManufacturerInfo 0x0540 64 RO "What the maker says of the device." ${own})
    zq_float(LinkCommandTimeout 0x0580 8 RW "How long an access to the registers of the camera waits for its answer, each \
time it is tried." VISIBILITY Expert MIN 1000 MAX 60000000 UNIT us ${own})
    zq_integer(LinkCommandRetryCount 0x0588 4 RW "How often such an access is tried again." VISIBILITY Expert MIN 0 MAX 10
        ${own})
    if(technology STREQUAL "gev")
        zq_integer(DeviceStreamChannelPacketSize 0x0718 4 RO "Bytes of a packet of the stream." VISIBILITY Expert UNIT B
            ${own})
    endif()
    zq_finish_module()
endfunction()
