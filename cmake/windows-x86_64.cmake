set(WINDOWS_ARCH x86_64)
include("${CMAKE_CURRENT_LIST_DIR}/windows.cmake")
