# Flags that every target of the project is built with.
add_compile_options(-Wall -Wextra)
if(ZQAPI_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()

# A fuzzer sees only what is instrumented for it, so that everything is.
if(ZQAPI_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "ZQAPI_FUZZ needs clang: libFuzzer is a part of it.")
    endif()
    set(ZQAPI_SANITIZE "fuzzer-no-link,address,undefined")
endif()

# Sanitizers want line numbers and speed, and every frame in a report.
set(CMAKE_C_FLAGS_SANITIZE "-O1 -g -fno-omit-frame-pointer")
set(CMAKE_CXX_FLAGS_SANITIZE "-O1 -g -fno-omit-frame-pointer")
if(ZQAPI_SANITIZE)
    add_compile_options(-fsanitize=${ZQAPI_SANITIZE})
    add_link_options(-fsanitize=${ZQAPI_SANITIZE})
    if(ZQAPI_SANITIZE MATCHES "undefined")
        add_compile_options(-fno-sanitize-recover=undefined)
    endif()
    add_compile_definitions(ZQAPI_SANITIZED)
endif()

# Every branch as it is written, and counters that several threads may raise.
set(CMAKE_C_FLAGS_COVERAGE "-O0")
set(CMAKE_CXX_FLAGS_COVERAGE "-O0")
if(ZQAPI_COVERAGE)
    add_link_options(--coverage)
endif()
