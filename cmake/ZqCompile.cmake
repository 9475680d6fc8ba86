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

# Every branch as it is written.
set(CMAKE_C_FLAGS_COVERAGE "-O0")
set(CMAKE_CXX_FLAGS_COVERAGE "-O0")

# zq_measure(<target>)
# Counts what of this target runs. The counters lie in a file that is mapped, so that what a process counted before it was
# ended counts as well; threads and processes raise them together, and the outcome that has no counter of its own is
# what others leave over.
function(zq_measure target)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "ZQAPI_COVERAGE needs clang: gcc counts branches of its own as well.")
    endif()
    target_compile_options(${target} PRIVATE
        -fprofile-instr-generate -fcoverage-mapping -fprofile-update=atomic "SHELL:-mllvm -runtime-counter-relocation")
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
endfunction()
