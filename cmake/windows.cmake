# Cross compiling for Windows with Debian's mingw-w64. Included by windows-i686.cmake and windows-x86_64.cmake, which
# set WINDOWS_ARCH. Everything is linked statically, so that a program is one file.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR "${WINDOWS_ARCH}")

# std::thread needs the -posix flavour.
set(CMAKE_C_COMPILER "${WINDOWS_ARCH}-w64-mingw32-gcc-posix")
set(CMAKE_CXX_COMPILER "${WINDOWS_ARCH}-w64-mingw32-g++-posix")
set(CMAKE_RC_COMPILER "${WINDOWS_ARCH}-w64-mingw32-windres")

set(CMAKE_FIND_ROOT_PATH "/usr/${WINDOWS_ARCH}-w64-mingw32" ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Numbers are 64 bits wide in the registers too, as on every other platform. The system aligns the stack for callbacks
# to 4 bytes alone, and SSE needs 16.
if(WINDOWS_ARCH STREQUAL i686)
  set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
  set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
endif()

set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_CXX_STANDARD_LIBRARIES
  "-Wl,-Bstatic -lkernel32 -luser32 -lgdi32 -lwinspool -lshell32 -lole32 -loleaut32 -luuid -lcomdlg32 -ladvapi32")
