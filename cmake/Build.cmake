# Word size, build type, flags and warnings: what every target shares.
include(CheckCXXSourceCompiles)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# The product is a 32-bit program; the same sources build natively.
set(TRELLIS_32 OFF)
if(NOT TRELLIS_BITS STREQUAL "64")
  set(CMAKE_REQUIRED_FLAGS "-m32")
  check_cxx_source_compiles("#include <vector>\nint main() { return int(std::vector<int>(1).size()) - 1; }" TRELLIS_CAN_LINK_32)
  unset(CMAKE_REQUIRED_FLAGS)
  if(TRELLIS_CAN_LINK_32)
    set(TRELLIS_32 ON)
    message(STATUS "Building 32-bit")
  elseif(TRELLIS_BITS STREQUAL "32")
    message(FATAL_ERROR "A 32-bit build was asked for, but the compiler cannot link with -m32 (Debian: install g++-multilib)")
  else()
    message(STATUS "Building natively: the compiler cannot link with -m32 (Debian: install g++-multilib)")
  endif()
endif()

find_package(Threads REQUIRED)

# Flags that every object must share, Google Test's included. No contraction and no fast mathematics: the same input
# gives the same bytes in every build.
add_library(halyard_flags INTERFACE)
target_compile_features(halyard_flags INTERFACE cxx_std_20)
target_compile_options(halyard_flags INTERFACE -ffp-contract=off)
target_include_directories(halyard_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_link_libraries(halyard_flags INTERFACE Threads::Threads)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
if(TRELLIS_32)
  target_compile_options(halyard_flags INTERFACE -m32 -msse2 -mfpmath=sse)
  target_compile_definitions(halyard_flags INTERFACE _FILE_OFFSET_BITS=64)
  target_link_options(halyard_flags INTERFACE -m32)
endif()
if(TRELLIS_SANITIZE)
  target_compile_options(halyard_flags INTERFACE -fsanitize=${TRELLIS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  target_link_options(halyard_flags INTERFACE -fsanitize=${TRELLIS_SANITIZE})
endif()

add_library(halyard_warnings INTERFACE)
target_compile_options(halyard_warnings INTERFACE
  -Wall -Wextra -Werror -Wshadow -Wnon-virtual-dtor -Wformat=2 -Woverloaded-virtual -Wcast-qual -Wundef -Wvla)
