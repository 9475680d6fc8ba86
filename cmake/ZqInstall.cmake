# What `cmake --install` puts where: headers, libraries, the CMake package and pkg-config file, the tool, the producer.
include(CMakePackageConfigHelpers)

set(ZQAPI_PRODUCER_DIR "${CMAKE_INSTALL_LIBDIR}/zqapi")
set(ZQAPI_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ZqApi")

install(DIRECTORY include/ZqApi DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" FILES_MATCHING PATTERN "*.h")
install(FILES gentl/GenTL.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/ZqApi/gentl")
if(NOT ZQAPI_GENICAM_SDK)
    install(DIRECTORY genapi/include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zqgenapi" FILES_MATCHING PATTERN "*.h")
    set(ZQAPI_GENAPI_LIBS -lzqgenapi)
    set(ZQAPI_GENAPI_CFLAGS "-I\${includedir}/zqgenapi")
endif()

install(TARGETS ZqApi zqgenapi EXPORT ZqApiTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(TARGETS zqgentl LIBRARY DESTINATION "${ZQAPI_PRODUCER_DIR}")
install(TARGETS zq RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")

install(EXPORT ZqApiTargets NAMESPACE ZqApi:: DESTINATION "${ZQAPI_PACKAGE_DIR}")
configure_package_config_file(cmake/ZqApiConfig.cmake.in "${CMAKE_BINARY_DIR}/ZqApiConfig.cmake"
    INSTALL_DESTINATION "${ZQAPI_PACKAGE_DIR}" PATH_VARS ZQAPI_PRODUCER_DIR)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/ZqApiConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/ZqApiConfig.cmake" "${CMAKE_BINARY_DIR}/ZqApiConfigVersion.cmake"
    DESTINATION "${ZQAPI_PACKAGE_DIR}")

# The prefix is told from where the file lies, so that it holds wherever the installation is put.
file(RELATIVE_PATH ZQAPI_PREFIX_FROM_PC "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/zqapi.pc.in "${CMAKE_BINARY_DIR}/zqapi.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/zqapi.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
