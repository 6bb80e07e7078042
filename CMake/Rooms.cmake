# A room is one folder under Sources that becomes one static library. It may include only the rooms
# it names under DEPENDS (and what those name), so an arrow that was not agreed on fails to link.
#
#   vistrel_add_room(NAME FOLDER [QT] [DEPENDS room...] [LINK library...] [EXCLUDE regex])
#
# QT turns on moc and the shared precompiled header of Qt and the standard library.
function(vistrel_add_room name folder)
  cmake_parse_arguments(ROOM "QT;RECURSE" "EXCLUDE" "DEPENDS;LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/Sources/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/Sources/${folder}/*.h)
  if(NOT sources MATCHES "\\.cpp")
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE
      ${CMAKE_SOURCE_DIR}/Sources ${CMAKE_SOURCE_DIR}/Sources/Vistrel)
    target_link_libraries(${name} INTERFACE ${ROOM_DEPENDS} ${ROOM_LINK} vistrel_options)
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC
    ${CMAKE_SOURCE_DIR}/Sources ${CMAKE_SOURCE_DIR}/Sources/Vistrel)
  target_link_libraries(${name} PUBLIC ${ROOM_DEPENDS} ${ROOM_LINK} PRIVATE vistrel_options)
  if(ROOM_QT)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PUBLIC Qt6::Core Qt6::Gui Qt6::Widgets Qt6::Concurrent tl::expected)
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII
      QT_NO_FOREACH QT_NO_JAVA_STYLE_ITERATORS)
    target_precompile_headers(${name} REUSE_FROM vistrel_pch)
  endif()
endfunction()

# A module makes a room loadable: a library that exports one function (VistrelPlatform/ModuleEntry.h) and
# hides the rooms it holds. It lies where an installation has it, seen from the program: ../lib/vistrel.
#
#   vistrel_add_module(NAME SOURCE ROOM)
function(vistrel_add_module name source room)
  set(module vistrel_module_${name})
  add_library(${module} MODULE ${source})
  target_link_libraries(${module} PRIVATE vistrel_options ${room})
  target_compile_definitions(${module} PRIVATE VISTREL_VERSION="${PROJECT_VERSION}")
  target_link_options(${module} PRIVATE -Wl,--exclude-libs,ALL)
  # Clang leaves its sanitizers' symbols to the program.
  if(NOT VISTREL_SANITIZE OR CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_link_options(${module} PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(${module} PROPERTIES PREFIX "" OUTPUT_NAME ${name} DEFINE_SYMBOL ""
    CXX_VISIBILITY_PRESET hidden LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/vistrel)
endfunction()
