# Writes the description files from their templates and embeds them. Afterwards DESCRIPTION_SOURCES lists the sources.
set(DESCRIPTION_SOURCES "")
set(templates "${CMAKE_CURRENT_LIST_DIR}")
set(written "${CMAKE_CURRENT_BINARY_DIR}/descriptions")
file(MAKE_DIRECTORY "${written}")

# Which schema 1.x the description follows is CAMERA_SCHEMA_MINOR of the caller.
function(zq_embed symbol file)
    set(source "${written}/${symbol}.cpp")
    add_custom_command(OUTPUT "${source}"
        COMMAND "${CMAKE_COMMAND}" -DINPUT=${file} -DSYMBOL=${symbol} -DSCHEMA_MINOR=${CAMERA_SCHEMA_MINOR}
                -DOUTPUT=${source}
                -P "${templates}/Embed.cmake"
        DEPENDS "${file}" "${templates}/Embed.cmake"
        COMMENT "Embedding ${symbol}" VERBATIM)
    set(DESCRIPTION_SOURCES ${DESCRIPTION_SOURCES} "${source}" PARENT_SCOPE)
endfunction()

# zq_description(<symbol> <template>): the template, with the variables of the caller, as plain XML.
function(zq_description symbol template)
    configure_file("${templates}/${template}.xml.in" "${written}/zqgentl_${symbol}.xml" @ONLY)
    zq_embed(${symbol} "${written}/zqgentl_${symbol}.xml")
    set(DESCRIPTION_SOURCES ${DESCRIPTION_SOURCES} PARENT_SCOPE)
endfunction()

# The same, zipped.
function(zq_zipped_description symbol template)
    set(xml "zqgentl_${symbol}.xml")
    set(zip "${written}/zqgentl_${symbol}.zip")
    configure_file("${templates}/${template}.xml.in" "${written}/${xml}" @ONLY)
    add_custom_command(OUTPUT "${zip}"
        COMMAND "${CMAKE_COMMAND}" -E tar cf "${zip}" --format=zip --mtime=2020-01-01 "${xml}"
        DEPENDS "${written}/${xml}" WORKING_DIRECTORY "${written}"
        COMMENT "Zipping ${xml}" VERBATIM)
    zq_embed(${symbol} "${zip}")
    set(DESCRIPTION_SOURCES ${DESCRIPTION_SOURCES} PARENT_SCOPE)
endfunction()

# A part of a template that only the modules of GigE Vision have.
function(zq_read_part variable part)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${templates}/${part}.xml.part")
    file(READ "${templates}/${part}.xml.part" text)
    set(${variable} "${text}" PARENT_SCOPE)
endfunction()

set(CAMERA_SCHEMA_MINOR 1)
include("${templates}/Features.cmake")
include("${templates}/ModuleEvents.cmake")
include("${templates}/ModuleFeatures.cmake")

zq_write_module_events(TLPort 9020 "" InterfaceListChanged)
zq_write_system_features()
zq_description(system system)
zq_write_module_events(StreamPort 9030 FRAME TransferEnd BufferTooSmall BuffersDiscarded NewBufferData)
zq_description(stream stream)

set(GEV_FEATURES "")
set(GEV_SELECTED "")
set(GEV_NODES "")
foreach(technology u3v cxp)
    zq_write_module_events(InterfacePort 9010 "" InterfaceLost DeviceListChanged)
    zq_write_interface_features(${technology})
    zq_description(interface_${technology} interface)
    zq_write_module_events(DevicePort 9001 "" DeviceLost)
    zq_write_device_features(${technology})
    zq_description(device_${technology} device)
endforeach()
set(GEV_FEATURES "        <pFeature>GevInterfaceInformation</pFeature>\n")
zq_read_part(GEV_NODES interface_gev)
foreach(feature GevDeviceMACAddress GevDeviceIPAddress GevDeviceSubnetMask GevDeviceGateway)
    string(APPEND GEV_SELECTED "        <pSelected>${feature}</pSelected>\n")
endforeach()
zq_write_module_events(InterfacePort 9010 "" InterfaceLost DeviceListChanged)
zq_write_interface_features(gev)
zq_description(interface_gev interface)
set(GEV_FEATURES "        <pFeature>GevDeviceInformation</pFeature>\n")
zq_read_part(GEV_NODES device_gev)
zq_write_module_events(DevicePort 9001 "" DeviceLost)
zq_write_device_features(gev)
zq_description(device_gev device)

# <name>=<code> for every pixel format that a camera of CAMERA_TECHNOLOGY has.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/sim/PixelFormats.def")
function(zq_read_pixel_formats variable)
    file(STRINGS "${CMAKE_CURRENT_SOURCE_DIR}/sim/PixelFormats.def" rows REGEX "^ZQ_PIXEL_FORMAT")
    set(entries "")
    foreach(row IN LISTS rows)
        if(row MATCHES "Gvsp" AND NOT CAMERA_TECHNOLOGY STREQUAL "GEV")
            continue()
        endif()
        string(REGEX REPLACE "^ZQ_PIXEL_FORMAT\\(([A-Za-z0-9_]+), (0x[0-9A-F]+),.*" "\\1=\\2" entry "${row}")
        list(APPEND entries "${entry}")
    endforeach()
    set(${variable} "${entries}" PARENT_SCOPE)
endfunction()

# Writes the nodes of a camera of one technology into CAMERA_CATEGORIES and CAMERA_NODES.
macro(zq_write_camera technology)
    set(CAMERA_TECHNOLOGY ${technology})
    zq_read_pixel_formats(PIXEL_FORMATS)
    zq_begin_camera()
    foreach(category DeviceControl ImageFormatControl AcquisitionControl AnalogControl LUTControl
            DigitalIOControl CounterAndTimerControl EventControl ChunkDataControl FileAccessControl UserSetControl
            ActionControl TransportLayerControl SimulationControl)
        include("${templates}/camera/${category}.cmake")
    endforeach()
    zq_finish_camera()
endmacro()

set(CAMERA_MODEL SimU3V2M)
set(CAMERA_STANDARD USB)
set(CAMERA_ENDIANESS LittleEndian)
set(CAMERA_GUID 5A51A501-0001-4000-8000-000000000001)
zq_write_camera(U3V)
zq_description(camera_u3v camera)
set(CAMERA_MODEL SimGEV5M)
set(CAMERA_STANDARD GEV)
set(CAMERA_ENDIANESS BigEndian)
set(CAMERA_GUID 5A51A501-0001-4000-8000-000000000002)
zq_write_camera(GEV)
zq_zipped_description(camera_gev camera)
set(CAMERA_MODEL SimGEV3M)
set(CAMERA_GUID 5A51A501-0001-4000-8000-000000000005)
set(CAMERA_SCHEMA_MINOR 0)
zq_write_camera(GEV)
zq_zipped_description(camera_gev_schema10 camera)
set(CAMERA_SCHEMA_MINOR 1)
set(CAMERA_MODEL SimCXP12M)
set(CAMERA_STANDARD None)
set(CAMERA_GUID 5A51A501-0001-4000-8000-000000000003)
zq_write_camera(CXP)
zq_description(camera_cxp camera)
set(CAMERA_MODEL SimCXP25M)
set(CAMERA_GUID 5A51A501-0001-4000-8000-000000000004)
zq_write_camera(CXP)
zq_description(camera_cxp_native camera)

set(CAMERA_ENDIANESS LittleEndian)
zq_begin_camera()
include("${templates}/buffer.cmake")
zq_finish_camera()
zq_description(buffer buffer)
