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
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}" ENVIRONMENT "${ARG_ENVIRONMENT}")
endfunction()
