# The words that the camera's description is written in. Each writes one feature, and the register behind it, into
# CAMERA_NODES; a feature belongs to the category that was begun last.
#
#   zq_category(<name> <tooltip>)
#   zq_integer(<name> <address> <length> <access> <tooltip> [options])
#   zq_float, zq_string: the same; zq_boolean, zq_enumeration: without the length, which is 4
#   zq_command(<name> <address> <tooltip> [options])
#   zq_register(<name> <Int|Float|String> <address> <length> <access> [options])     the register alone
#   zq_bytes(<name> <address> <length> <tooltip>)
#   zq_formula(<name> <formula> <variable>=<node>...)
#   zq_port(<name> <tooltip> [CHUNK_ID <hex>] [EVENT_ID <hex>])
#
# Options: ENTRIES <name>=<value>..., MIN, MAX, INC, PMIN, PMAX, PINC, UNIT, VISIBILITY, REPRESENTATION, AVAILABLE
# <node>, LOCKED_BY <node>, SELECTS <node>..., INVALIDATED_BY <node>..., VALID <value>..., POLLING <ms>, PORT <node>, ENDIANESS, EVENT_ID,
# and the flags STREAMABLE, LOCKED (while TLParamsLocked is 1), NOCACHE, CUSTOM (not in the standard's namespace),
# HIDDEN (in no category), SIGNED.
#
# CAMERA_SCHEMA_MINOR 0 writes them in the words of schema 1.0: integers have no unit and no set of valid values, texts
# are the registers themselves, every register of the camera and of its chunks is big endian.

macro(zq_begin_camera)
    set_property(GLOBAL PROPERTY zq_root "")
    set_property(GLOBAL PROPERTY zq_categories "")
    set_property(GLOBAL PROPERTY zq_nodes "")
endmacro()

function(zq_append text)
    set_property(GLOBAL APPEND_STRING PROPERTY zq_nodes "${text}")
endfunction()

function(zq_end_category)
    get_property(open GLOBAL PROPERTY zq_categories)
    if(NOT open STREQUAL "")
        set_property(GLOBAL PROPERTY zq_categories "")
        zq_append("${open}    </Category>\n\n")
    endif()
endfunction()

function(zq_category name tooltip)
    zq_end_category()
    set_property(GLOBAL APPEND_STRING PROPERTY zq_root "        <pFeature>${name}</pFeature>\n")
    set(namespace Standard)
    if(name MATCHES "^Simulation")
        set(namespace Custom)
    endif()
    set_property(GLOBAL PROPERTY zq_categories
        "    <Category Name=\"${name}\" NameSpace=\"${namespace}\">\n        <ToolTip>${tooltip}</ToolTip>\n")
endfunction()

function(zq_list_feature name)
    get_property(open GLOBAL PROPERTY zq_categories)
    set_property(GLOBAL PROPERTY zq_categories "${open}        <pFeature>${name}</pFeature>\n")
endfunction()

# Sets, in the caller, one variable OPT_<NAME> per option.
macro(zq_options)
    cmake_parse_arguments(OPT "STREAMABLE;LOCKED;NOCACHE;CUSTOM;HIDDEN;SIGNED"
        "MIN;MAX;INC;PMIN;PMAX;PINC;UNIT;VISIBILITY;REPRESENTATION;AVAILABLE;LOCKED_BY;POLLING;PORT;ENDIANESS;EVENT_ID"
        "ENTRIES;SELECTS;INVALIDATED_BY;VALID" ${ARGN})
    if(OPT_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "${name}: no option is named ${OPT_UNPARSED_ARGUMENTS}")
    endif()
endmacro()

function(zq_element variable tag)
    if(DEFINED OPT_${variable})
        set(text "${text}        <${tag}>${OPT_${variable}}</${tag}>\n" PARENT_SCOPE)
    endif()
endfunction()

function(zq_register name kind address length access)
    zq_options(${ARGN})
    set(text "    <${kind}Reg Name=\"${name}\">\n")
    zq_write_register()
endfunction()

# Writes what follows the first elements of a register, and its end.
macro(zq_write_register)
    if(NOT DEFINED OPT_PORT)
        set(OPT_PORT Device)
    endif()
    if(NOT DEFINED OPT_ENDIANESS OR CAMERA_SCHEMA_MINOR EQUAL 0)
        set(OPT_ENDIANESS ${CAMERA_ENDIANESS})
    endif()
    string(APPEND text "        <Address>${address}</Address>\n")
    string(APPEND text "        <Length>${length}</Length>\n        <AccessMode>${access}</AccessMode>\n")
    string(APPEND text "        <pPort>${OPT_PORT}</pPort>\n")
    if(OPT_NOCACHE)
        string(APPEND text "        <Cachable>NoCache</Cachable>\n")
    endif()
    zq_element(POLLING PollingTime)
    # Loading a user set changes whatever can be written.
    if(OPT_PORT STREQUAL "Device" AND access STREQUAL "RW" AND NOT OPT_NOCACHE)
        list(APPEND OPT_INVALIDATED_BY UserSetLoad)
    endif()
    foreach(invalidator IN LISTS OPT_INVALIDATED_BY)
        string(APPEND text "        <pInvalidator>${invalidator}</pInvalidator>\n")
    endforeach()
    if(kind STREQUAL "Int")
        if(OPT_SIGNED)
            string(APPEND text "        <Sign>Signed</Sign>\n")
        else()
            string(APPEND text "        <Sign>Unsigned</Sign>\n")
        endif()
    endif()
    if(NOT kind STREQUAL "String")
        string(APPEND text "        <Endianess>${OPT_ENDIANESS}</Endianess>\n")
    endif()
    zq_append("${text}    </${kind}Reg>\n\n")
endmacro()

# What a feature of any type begins with.
macro(zq_begin_feature type)
    set(namespace Standard)
    if(OPT_CUSTOM OR name MATCHES "^Simulation")
        set(namespace Custom)
    endif()
    set(text "    <${type} Name=\"${name}\" NameSpace=\"${namespace}\">\n        <ToolTip>${tooltip}</ToolTip>\n")
    zq_element(VISIBILITY Visibility)
    zq_element(EVENT_ID EventID)
    zq_element(AVAILABLE pIsAvailable)
    if(OPT_LOCKED)
        set(OPT_LOCKED_BY TLParamsLocked)
    endif()
    zq_element(LOCKED_BY pIsLocked)
endmacro()

# The words of schema 1.1 that 1.0 lacks: 1, 2 and 4 become 1 to 4, and the camera itself refuses 3.
macro(zq_restrict_to_schema type)
    if(CAMERA_SCHEMA_MINOR EQUAL 0)
        if(DEFINED OPT_VALID)
            list(GET OPT_VALID 0 OPT_MIN)
            list(GET OPT_VALID -1 OPT_MAX)
            unset(OPT_VALID)
        endif()
        if("${type}" STREQUAL "Integer")
            unset(OPT_UNIT)
        endif()
    endif()
endmacro()

# The feature node of any type; what stands between its first and its last elements is <middle>.
function(zq_feature type name tooltip middle)
    zq_options(${ARGN})
    zq_restrict_to_schema(${type})
    zq_begin_feature(${type})
    if(OPT_STREAMABLE)
        string(APPEND text "        <Streamable>Yes</Streamable>\n")
    endif()
    foreach(entry IN LISTS OPT_ENTRIES)
        string(REPLACE "=" ";" entry "${entry}")
        list(GET entry 0 symbol)
        list(GET entry 1 value)
        string(APPEND text "        <EnumEntry Name=\"${symbol}\" NameSpace=\"${namespace}\"><Value>${value}</Value></EnumEntry>\n")
    endforeach()
    string(APPEND text "${middle}")
    zq_element(MIN Min)
    zq_element(PMIN pMin)
    zq_element(MAX Max)
    zq_element(PMAX pMax)
    zq_element(INC Inc)
    zq_element(PINC pInc)
    zq_element(UNIT Unit)
    zq_element(REPRESENTATION Representation)
    if(DEFINED OPT_VALID)
        string(APPEND text "        <ValidValueSet>${OPT_VALID}</ValidValueSet>\n")
    endif()
    foreach(selected IN LISTS OPT_SELECTS)
        string(APPEND text "        <pSelected>${selected}</pSelected>\n")
    endforeach()
    zq_append("${text}    </${type}>\n")
    if(NOT OPT_HIDDEN)
        zq_list_feature(${name})
    endif()
endfunction()

macro(zq_feature_with_register type kind)
    zq_feature(${type} ${name} "${tooltip}" "        <pValue>${name}Reg</pValue>\n" ${ARGN})
    zq_register(${name}Reg ${kind} ${address} ${length} ${access} ${ARGN})
endmacro()

function(zq_integer name address length access tooltip)
    zq_feature_with_register(Integer Int ${ARGN})
endfunction()

function(zq_float name address length access tooltip)
    zq_feature_with_register(Float Float ${ARGN})
endfunction()

function(zq_string name address length access tooltip)
    if(CAMERA_SCHEMA_MINOR EQUAL 1)
        zq_feature_with_register(String String ${ARGN})
        return()
    endif()
    set(kind String)
    zq_options(${ARGN})
    zq_begin_feature(StringReg)
    zq_write_register()
    zq_list_feature(${name})
endfunction()

function(zq_boolean name address access tooltip)
    set(length 4)
    zq_feature_with_register(Boolean Int ${ARGN})
endfunction()

function(zq_enumeration name address access tooltip)
    set(length 4)
    zq_feature_with_register(Enumeration Int ${ARGN})
endfunction()

# A command is done as soon as it is written.
function(zq_command name address tooltip)
    zq_feature(Command ${name} "${tooltip}"
        "        <pValue>${name}Reg</pValue>\n        <CommandValue>1</CommandValue>\n" ${ARGN})
    zq_options(${ARGN})
    zq_register(${name}Reg Int ${address} 4 WO NOCACHE)
endfunction()

# Bytes without meaning to the node map.
function(zq_bytes name address length tooltip)
    zq_list_feature(${name})
    set(text "    <Register Name=\"${name}\" NameSpace=\"Standard\">\n        <ToolTip>${tooltip}</ToolTip>\n")
    string(APPEND text "        <Address>${address}</Address>\n        <Length>${length}</Length>\n")
    string(APPEND text "        <AccessMode>RW</AccessMode>\n        <pPort>Device</pPort>\n")
    zq_append("${text}        <Cachable>NoCache</Cachable>\n    </Register>\n\n")
endfunction()

# A feature that shows another node, read only.
function(zq_alias type name target tooltip)
    zq_feature(${type} ${name} "${tooltip}"
        "        <ImposedAccessMode>RO</ImposedAccessMode>\n        <pValue>${target}</pValue>\n" ${ARGN})
endfunction()

function(zq_formula name formula)
    set(text "    <IntSwissKnife Name=\"${name}\">\n")
    foreach(variable IN LISTS ARGN)
        string(REPLACE "=" ";" variable "${variable}")
        list(GET variable 0 symbol)
        list(GET variable 1 node)
        string(APPEND text "        <pVariable Name=\"${symbol}\">${node}</pVariable>\n")
    endforeach()
    zq_append("${text}        <Formula>${formula}</Formula>\n    </IntSwissKnife>\n\n")
endfunction()

function(zq_port name tooltip)
    cmake_parse_arguments(OPT "" "CHUNK_ID;EVENT_ID" "" ${ARGN})
    set(text "    <Port Name=\"${name}\" NameSpace=\"Standard\">\n        <ToolTip>${tooltip}</ToolTip>\n")
    zq_element(EVENT_ID EventID)
    zq_element(CHUNK_ID ChunkID)
    zq_append("${text}    </Port>\n\n")
endfunction()

# Puts what was written into CAMERA_CATEGORIES and CAMERA_NODES of the caller.
function(zq_finish_camera)
    zq_end_category()
    get_property(root GLOBAL PROPERTY zq_root)
    get_property(nodes GLOBAL PROPERTY zq_nodes)
    set(CAMERA_CATEGORIES "${root}" PARENT_SCOPE)
    set(CAMERA_NODES "${nodes}" PARENT_SCOPE)
endfunction()
