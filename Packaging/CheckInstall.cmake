# Installs the build into an empty folder and looks at what is there:
#   cmake -D BUILD=build/dev -D VERSION=1.2.3 -P Packaging/CheckInstall.cmake
string(RANDOM LENGTH 8 name)
set(prefix "${BUILD}/Packaging/check-${name}")
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} RESULT_VARIABLE status OUTPUT_QUIET)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "Installing failed: ${status}")
endif()

file(GLOB_RECURSE installed RELATIVE ${prefix} ${prefix}/*)
set(expected bin/vistrel lib/vistrel/network.so lib/vistrel/desktop.so share/vistrel/Info.json share/vistrel/Files.txt
  share/applications/com.orvane.Vistrel.desktop share/metainfo/com.orvane.Vistrel.metainfo.xml
  share/dbus-1/services/com.orvane.Vistrel.service
  share/icons/hicolor/scalable/apps/com.orvane.Vistrel.svg
  share/icons/hicolor/symbolic/apps/com.orvane.Vistrel-symbolic.svg)
foreach(size 16 32 64 128 256 512)
  list(APPEND expected share/icons/hicolor/${size}x${size}/apps/com.orvane.Vistrel.png)
endforeach()
foreach(icon select pen line arrow rectangle ellipse marker blur pixelate text undo redo trash recording share save copy
    capture settings launch-at-login quit)
  foreach(variant 64 128 256)
    list(APPEND expected share/vistrel/EditorIcons/${variant}/${icon}.png)
  endforeach()
endforeach()
list(SORT installed)
list(SORT expected)
if(NOT installed STREQUAL expected)
  message(SEND_ERROR "Installed: ${installed}\nexpected: ${expected}")
endif()

file(STRINGS ${prefix}/share/vistrel/Files.txt listed)
list(SORT listed)
if(NOT listed STREQUAL expected)
  message(SEND_ERROR "Files.txt names: ${listed}\nexpected: ${expected}")
endif()

file(READ ${prefix}/share/vistrel/Info.json information)
string(JSON version GET "${information}" CFBundleShortVersionString)
if(NOT version STREQUAL VERSION)
  message(SEND_ERROR "Info.json says version ${version}, not ${VERSION}")
endif()

foreach(entry share/applications/com.orvane.Vistrel.desktop share/dbus-1/services/com.orvane.Vistrel.service)
  file(STRINGS ${prefix}/${entry} commands REGEX "^(Try)?Exec=")
  foreach(command IN LISTS commands)
    if(NOT command MATCHES "^(Try)?Exec=${prefix}/bin/vistrel( --capture)?$")
      message(SEND_ERROR "${entry} does not start the installed program: ${command}")
    endif()
  endforeach()
endforeach()

# The width stands at byte 16 of a PNG file.
foreach(size 16 32 64 128 256 512)
  file(READ ${prefix}/share/icons/hicolor/${size}x${size}/apps/com.orvane.Vistrel.png width OFFSET 16 LIMIT 4 HEX)
  math(EXPR width "0x${width}")
  if(NOT width EQUAL size)
    message(SEND_ERROR "The icon of size ${size} is ${width} pixels wide")
  endif()
endforeach()

find_program(desktop_file_validate desktop-file-validate)
if(desktop_file_validate)
  execute_process(COMMAND ${desktop_file_validate} ${prefix}/share/applications/com.orvane.Vistrel.desktop
    RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(SEND_ERROR "The desktop entry is not valid")
  endif()
endif()
find_program(appstreamcli appstreamcli)
if(appstreamcli)
  execute_process(COMMAND ${appstreamcli} validate --no-net ${prefix}/share/metainfo/com.orvane.Vistrel.metainfo.xml
    RESULT_VARIABLE status OUTPUT_VARIABLE report)
  if(NOT status EQUAL 0)
    message(SEND_ERROR "The metainfo file is not valid:\n${report}")
  endif()
endif()
file(REMOVE_RECURSE ${prefix})
