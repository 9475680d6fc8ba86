# Cross build for 64-bit Arm on a Debian host: the distribution's cross compiler and its arm64 libraries beside the
# host's own (multiarch). Tests run in qemu's user-mode emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
# Packages of the host must not be found where the target's are missing.
set(ENV{PKG_CONFIG_LIBDIR} "/usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig")
set(CMAKE_IGNORE_PREFIX_PATH /usr/lib/x86_64-linux-gnu)
