# zq_add_test(<name> SOURCES <files> [LIBS <targets>] [TIMEOUT <seconds>] [LABELS <labels>]
#             [ENVIRONMENT <VAR=value>...])
# One GoogleTest binary; every test of it becomes a ctest test that runs in a process of its own.
find_package(GTest REQUIRED)
include(GoogleTest)

function(zq_add_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS;ENVIRONMENT" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main Threads::Threads)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
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
