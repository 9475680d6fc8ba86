# Stands in for genapi/ when ZQAPI_GENICAM_SDK names the root of an installed GenICam SDK: the same targets, with the
# SDK's headers and libraries behind them. Whatever the two have to be told apart by belongs in here.
#
# Looked for below the root: the folder that holds Base/GCBase.h and GenApi/GenApi.h, and the libraries whose names
# begin with libGCBase and libGenApi, or a libzqgenapi that has both.

set(ZQAPI_SDK_FOLDERS "" CACHE STRING "Folders below ZQAPI_GENICAM_SDK to search besides the usual ones")

find_path(ZQAPI_SDK_INCLUDE_DIR GenApi/GenApi.h
    HINTS "${ZQAPI_GENICAM_SDK}" NO_DEFAULT_PATH
    PATH_SUFFIXES library/CPP/include include include/zqgenapi ${ZQAPI_SDK_FOLDERS})
if(NOT ZQAPI_SDK_INCLUDE_DIR OR NOT EXISTS "${ZQAPI_SDK_INCLUDE_DIR}/Base/GCBase.h")
    message(FATAL_ERROR "ZQAPI_GENICAM_SDK: no Base/GCBase.h and GenApi/GenApi.h below '${ZQAPI_GENICAM_SDK}'.")
endif()

# A compiler's name or a version may follow the library's name; there may be several links to one file.
function(zq_find_sdk_library result)
    foreach(name IN LISTS ARGN)
        foreach(folder "lib" "lib/*" "library/CPP/lib" "library/CPP/lib/*" "bin" "bin/*" ${ZQAPI_SDK_FOLDERS})
            file(GLOB files "${ZQAPI_GENICAM_SDK}/${folder}/lib${name}*.so" "${ZQAPI_GENICAM_SDK}/${folder}/lib${name}*.so.*")
            if(files)
                list(SORT files)
                list(GET files 0 file)
                set(${result} "${file}" PARENT_SCOPE)
                return()
            endif()
        endforeach()
    endforeach()
    message(FATAL_ERROR "ZQAPI_GENICAM_SDK: no library of '${ARGN}' below '${ZQAPI_GENICAM_SDK}'.")
endfunction()
zq_find_sdk_library(ZQAPI_SDK_BASE_LIBRARY GCBase zqgenapi)
zq_find_sdk_library(ZQAPI_SDK_GENAPI_LIBRARY GenApi zqgenapi)
message(STATUS "Node maps from the GenICam SDK: ${ZQAPI_SDK_GENAPI_LIBRARY}")

add_library(zqgenapi INTERFACE)
target_include_directories(zqgenapi SYSTEM INTERFACE "${ZQAPI_SDK_INCLUDE_DIR}")
target_link_libraries(zqgenapi INTERFACE
    "${ZQAPI_SDK_GENAPI_LIBRARY}" "${ZQAPI_SDK_BASE_LIBRARY}" Threads::Threads)
set_target_properties(zqgenapi PROPERTIES EXPORT_NAME GenApi)
add_library(ZqApi::GenApi ALIAS zqgenapi)
set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)

# For zqapi.pc.
get_filename_component(sdk_library_dir "${ZQAPI_SDK_GENAPI_LIBRARY}" DIRECTORY)
set(ZQAPI_GENAPI_LIBS "${ZQAPI_SDK_GENAPI_LIBRARY} ${ZQAPI_SDK_BASE_LIBRARY} -Wl,-rpath,${sdk_library_dir}")
set(ZQAPI_GENAPI_CFLAGS "-I${ZQAPI_SDK_INCLUDE_DIR}")
