# zq_add_test(<name> SOURCES <files> [LIBS <targets>] [TIMEOUT <seconds>] [LABELS <labels>]
#             [ENVIRONMENT <VAR=value>...])
# One GoogleTest binary; every test of it becomes a ctest test that runs in a process of its own.
find_package(GTest REQUIRED)
include(GoogleTest)

# zq_emulated_program(<variable> <target>)
# Sets the variable to what a test starts to run this program: its file, or where the tests are emulated a script that
# the host can execute. The emulator tells the program that script as its own name, so that it can start itself again.
function(zq_emulated_program variable target)
    if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
        set(${variable} "$<TARGET_FILE:${target}>" PARENT_SCOPE)
        return()
    endif()
    set(script "${CMAKE_BINARY_DIR}/emulated/${target}")
    file(GENERATE OUTPUT "${script}"
        CONTENT "#!/bin/sh\nexec ${CMAKE_CROSSCOMPILING_EMULATOR} -0 \"$0\" '$<TARGET_FILE:${target}>' \"$@\"\n"
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set_target_properties(${target} PROPERTIES
        CROSSCOMPILING_EMULATOR "${CMAKE_CROSSCOMPILING_EMULATOR};-0;${script}")
    set(${variable} "${script}" PARENT_SCOPE)
endfunction()

function(zq_add_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS;ENVIRONMENT" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    if(CMAKE_CROSSCOMPILING_EMULATOR)
        math(EXPR ARG_TIMEOUT "3 * ${ARG_TIMEOUT}")
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main Threads::Threads)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
    zq_emulated_program(self ${name})
    # What headers of the library hold runs in the tests.
    if(ZQAPI_COVERAGE)
        zq_measure(${name})
    endif()
    # Read once instead of for every file: it takes longer than most of them.
    target_precompile_headers(${name} PRIVATE <gtest/gtest.h>)
    # An empty property value gets lost on the way to ctest and takes the next name for its own.
    set(properties TIMEOUT ${ARG_TIMEOUT})
    foreach(property LABELS ENVIRONMENT)
        if(ARG_${property})
            list(APPEND properties ${property} "${ARG_${property}}")
        endif()
    endforeach()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()
