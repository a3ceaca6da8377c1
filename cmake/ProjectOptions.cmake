# Language level, warnings, and the one function that makes a room's library.

option(QUORVANE_BUILD_TESTS "Build the tests" ON)
option(QUORVANE_BUILD_BENCHMARKS "Build the benchmarks" OFF)
set(QUORVANE_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
option(QUORVANE_WERROR "Treat warnings as errors" ON)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# What differs between systems stands in files of its own, NAME_unix.cpp and NAME_windows.cpp.
set(QUORVANE_PLATFORM unix)
if(WIN32)
  set(QUORVANE_PLATFORM windows)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(quorvane_options INTERFACE)
target_include_directories(quorvane_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(quorvane_options INTERFACE
  QT_NO_CAST_FROM_BYTEARRAY QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)
target_compile_options(quorvane_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${QUORVANE_WERROR}>:-Werror>)
if(QUORVANE_SANITIZE)
  target_compile_options(quorvane_options INTERFACE
    -fsanitize=${QUORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quorvane_options INTERFACE -fsanitize=${QUORVANE_SANITIZE})
endif()

# What a user runs stops at an overwritten stack, at a jump to no function's beginning and at a text longer than its
# buffer, and nobody can write the tables through which it calls libraries. Debug builds keep to the last of these.
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT WIN32 AND NOT APPLE)
  target_compile_options(quorvane_options INTERFACE
    "$<$<CONFIG:Release>:-fstack-protector-strong;-fstack-clash-protection>")
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options(quorvane_options INTERFACE $<$<CONFIG:Release>:-fcf-protection>)
  endif()
  target_compile_options(quorvane_options INTERFACE
    "$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  target_link_options(quorvane_options INTERFACE -pie -Wl,-z,relro,-z,now)
endif()

# quorvane_unit(TARGET UNIT SOURCE...): the preset release compiles these sources as one. The headers of Windows define
# names that others use, so what is for Windows stands alone.
function(quorvane_unit target unit)
  list(FILTER ARGN INCLUDE REGEX "\\.cpp$")
  list(FILTER ARGN EXCLUDE REGEX "_windows\\.cpp$")
  if(NOT ARGN)
    return()
  endif()
  set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${unit})
endfunction()

# quorvane_room(NAME SOURCES ... LINK ...): the static library of one folder.
# Its sources go into units of ten, all but pages and dialogs, which use the same names for their own constants.
# Sources that target_sources adds later are compiled alone, unless they are put into a unit.
function(quorvane_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINK" ${ARGN})
  qt_add_library(${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(${name} PUBLIC quorvane_options ${ROOM_LINK})
  set_target_properties(${name} PROPERTIES UNITY_BUILD_MODE GROUP)
  list(FILTER ROOM_SOURCES INCLUDE REGEX "\\.cpp$")
  list(FILTER ROOM_SOURCES EXCLUDE REGEX "_(page|dialog)\\.cpp$")
  set(number 0)
  foreach(source ${ROOM_SOURCES})
    math(EXPR unit "${number} / 10")
    quorvane_unit(${name} unit${unit} ${source})
    math(EXPR number "${number} + 1")
  endforeach()
endfunction()
