set(WINDOWS_ARCH i686)
include("${CMAKE_CURRENT_LIST_DIR}/windows.cmake")
