# Everything the program links. Each package has its reason in README.md.
option(VISTREL_BENCHMARKS "Build the benchmarks" OFF)
option(VISTREL_FUZZ "Build the fuzz targets (clang only)" OFF)
set(VISTREL_SANITIZE "" CACHE STRING "Sanitizers for our code and tests, e.g. address,undefined")

# What an installed tree says about itself (share/vistrel/Info.json). Empty values are left out.
set(VISTREL_FEED_URL "" CACHE STRING "Update feed address (https)")
set(VISTREL_PUBLIC_ED_KEY "" CACHE STRING "Base64 Ed25519 public key that update archives are signed with")
set(VISTREL_REPORT_URL "" CACHE STRING "Problem report service address (https)")
set(VISTREL_MAKER "" CACHE STRING "Name of the publisher, shown in the privacy text")

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets DBus Network Svg Concurrent)
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET
  xcb xcb-shm xcb-randr xcb-composite xcb-xfixes xcb-shape xcb-render xcb-xinput xcb-keysyms)
pkg_check_modules(XKB REQUIRED IMPORTED_TARGET xkbcommon xkbcommon-x11)
pkg_check_modules(DEFLATE REQUIRED IMPORTED_TARGET libdeflate)
pkg_check_modules(TURBOJPEG REQUIRED IMPORTED_TARGET libturbojpeg)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0 gio-unix-2.0)
# Its -pthread says nothing new to this C library and would make the shared precompiled header unusable.
set_target_properties(PkgConfig::GLIB PkgConfig::GIO PROPERTIES INTERFACE_COMPILE_OPTIONS "")
pkg_check_modules(CRYPTO REQUIRED IMPORTED_TARGET libcrypto)
find_package(tl-expected REQUIRED)

if(BUILD_TESTING)
  find_package(GTest REQUIRED)
  include(GoogleTest)
  pkg_check_modules(PNG REQUIRED IMPORTED_TARGET libpng)
  pkg_check_modules(XTEST REQUIRED IMPORTED_TARGET xcb-xtest)
endif()
if(VISTREL_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()

add_library(vistrel_options INTERFACE)
target_compile_options(vistrel_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Debug info at level 1 halves the size of sanitized objects and keeps line numbers.
  target_compile_options(vistrel_options INTERFACE $<$<CONFIG:Debug>:-g1>)
endif()
if(VISTREL_SANITIZE)
  target_compile_options(vistrel_options INTERFACE
    -fsanitize=${VISTREL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(vistrel_options INTERFACE -fsanitize=${VISTREL_SANITIZE})
endif()
find_program(VISTREL_MOLD mold)
if(VISTREL_MOLD)
  target_link_options(vistrel_options INTERFACE -fuse-ld=mold)
endif()
find_program(VISTREL_CCACHE ccache)
if(VISTREL_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VISTREL_CCACHE})
endif()
