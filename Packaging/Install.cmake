# What `cmake --install` puts where. The program finds its information file and its modules, and the updater
# its list of files, relative to the executable, so bin, lib and share are fixed.
if(NOT TARGET vistrel)
  return()
endif()

foreach(address VISTREL_FEED_URL VISTREL_REPORT_URL)
  if(${address} AND NOT ${address} MATCHES "^https://[^/]+")
    message(FATAL_ERROR "${address} must be an https address")
  endif()
endforeach()
if(VISTREL_PUBLIC_ED_KEY AND NOT VISTREL_PUBLIC_ED_KEY MATCHES "^[A-Za-z0-9+/]+=$")
  message(FATAL_ERROR "VISTREL_PUBLIC_ED_KEY must be the base64 text that Scripts/sign-update prints")
endif()
if(VISTREL_FEED_URL AND NOT VISTREL_PUBLIC_ED_KEY)
  message(FATAL_ERROR "VISTREL_FEED_URL needs VISTREL_PUBLIC_ED_KEY: updates are never installed unsigned")
endif()

# What the installed program says about itself. Empty values are left out.
set(information "{}")
function(vistrel_inform key value)
  if(value STREQUAL "")
    return()
  endif()
  string(REPLACE "\\" "\\\\" value "${value}")
  string(REPLACE "\"" "\\\"" value "${value}")
  string(JSON information SET "${information}" ${key} "\"${value}\"")
  set(information "${information}" PARENT_SCOPE)
endfunction()
vistrel_inform(CFBundleShortVersionString "${PROJECT_VERSION}")
vistrel_inform(SUFeedURL "${VISTREL_FEED_URL}")
vistrel_inform(SUPublicEDKey "${VISTREL_PUBLIC_ED_KEY}")
vistrel_inform(VistrelReportURL "${VISTREL_REPORT_URL}")
vistrel_inform(VistrelMaker "${VISTREL_MAKER}")
file(CONFIGURE OUTPUT Packaging/Info.json CONTENT "@information@\n" @ONLY)

set(vendor "Vistrel")
if(VISTREL_MAKER)
  set(vendor "${VISTREL_MAKER}")
endif()
string(REPLACE "&" "&amp;" VISTREL_MAKER_XML "${vendor}")
string(REPLACE "<" "&lt;" VISTREL_MAKER_XML "${VISTREL_MAKER_XML}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/../Resources/com.orvane.Vistrel.metainfo.xml.in
  Packaging/com.orvane.Vistrel.metainfo.xml @ONLY)

install(TARGETS vistrel RUNTIME DESTINATION bin)
install(TARGETS vistrel_module_network vistrel_module_desktop LIBRARY DESTINATION lib/vistrel)
install(FILES ${CMAKE_BINARY_DIR}/Packaging/Info.json DESTINATION share/vistrel)
install(FILES ${CMAKE_BINARY_DIR}/Packaging/com.orvane.Vistrel.metainfo.xml DESTINATION share/metainfo)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/../Resources/com.orvane.Vistrel.svg
  DESTINATION share/icons/hicolor/scalable/apps)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/../Resources/com.orvane.Vistrel-symbolic.svg
  DESTINATION share/icons/hicolor/symbolic/apps)

foreach(variant 64 128 256)
  install(DIRECTORY ${CMAKE_CURRENT_LIST_DIR}/../Resources/EditorIcons/${variant}
    DESTINATION share/vistrel/EditorIcons FILES_MATCHING PATTERN "*.png")
endforeach()

# The program draws its own icons, so that there is one drawing of them.
install(CODE "set(program \"$<TARGET_FILE:vistrel>\")
set(iconset \"${CMAKE_BINARY_DIR}/Packaging/iconset\")")
install(CODE [[
  execute_process(COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0
    "${program}" --export-iconset "${iconset}" RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "The program could not draw its icons: ${status}")
  endif()
  foreach(pair "16;icon_16x16" "32;icon_32x32" "64;icon_32x32@2x" "128;icon_128x128" "256;icon_256x256"
          "512;icon_512x512")
    list(GET pair 0 size)
    list(GET pair 1 name)
    file(INSTALL "${iconset}/${name}.png"
      DESTINATION "${CMAKE_INSTALL_PREFIX}/share/icons/hicolor/${size}x${size}/apps" TYPE FILE
      RENAME com.orvane.Vistrel.png)
  endforeach()
]])

# Desktops that give rights by the entry compare its command with the running program, and the bus starts
# nothing but a whole path. The archive is unpacked anywhere and has its program found by name.
install(CODE "set(resources \"${CMAKE_CURRENT_LIST_DIR}/../Resources\")
set(configured \"${CMAKE_BINARY_DIR}/Packaging/installed\")")
install(CODE [[
  set(VISTREL_COMMAND "${CMAKE_INSTALL_PREFIX}/bin/vistrel")
  set(is_archive FALSE)
  if(VISTREL_COMMAND MATCHES "/_CPack_Packages/")
    set(VISTREL_COMMAND vistrel)
    set(is_archive TRUE)
  endif()
  configure_file("${resources}/com.orvane.Vistrel.desktop.in" "${configured}/com.orvane.Vistrel.desktop" @ONLY)
  file(INSTALL "${configured}/com.orvane.Vistrel.desktop"
    DESTINATION "${CMAKE_INSTALL_PREFIX}/share/applications" TYPE FILE)
  if(NOT is_archive)
    configure_file("${resources}/com.orvane.Vistrel.service.in" "${configured}/com.orvane.Vistrel.service" @ONLY)
    file(INSTALL "${configured}/com.orvane.Vistrel.service"
      DESTINATION "${CMAKE_INSTALL_PREFIX}/share/dbus-1/services" TYPE FILE)
  endif()
]])

# Last: the list of everything above. The updater replaces a folder only if it holds nothing else.
install(CODE [[
  set(list "${CMAKE_INSTALL_PREFIX}/share/vistrel/Files.txt")
  list(APPEND CMAKE_INSTALL_MANIFEST_FILES "${list}")
  set(lines "")
  foreach(file IN LISTS CMAKE_INSTALL_MANIFEST_FILES)
    cmake_path(RELATIVE_PATH file BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" OUTPUT_VARIABLE relative)
    string(APPEND lines "${relative}\n")
  endforeach()
  file(WRITE "$ENV{DESTDIR}${list}" "${lines}")
]])

if(BUILD_TESTING)
  add_test(NAME packaging.install COMMAND ${CMAKE_COMMAND} -D BUILD=${CMAKE_BINARY_DIR}
    -D VERSION=${PROJECT_VERSION} -P ${CMAKE_CURRENT_LIST_DIR}/CheckInstall.cmake)
  set_tests_properties(packaging.install PROPERTIES LABELS app)
endif()

# `cpack` makes the tar archive that private installations update themselves with, and a Debian package.
set(CPACK_GENERATOR "TGZ;DEB")
set(CPACK_PACKAGE_NAME vistrel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Capture every display and draw on it in place")
set(CPACK_PACKAGE_VENDOR "${vendor}")
set(CPACK_PACKAGE_CONTACT "${vendor}")
set(CPACK_STRIP_FILES ON)
set(CPACK_MONOLITHIC_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Nothing links to Qt Svg: the toolkit loads it for the icons of desktop themes, most of which are SVG.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libqt6svg6, xdg-utils")
include(CPack)
