# Compile settings every Velmora target shares, as one INTERFACE target.
add_library(velmora_common INTERFACE)
target_compile_definitions(velmora_common INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_USE_QSTRINGBUILDER
  QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x050F00
  VELMORA_VERSION="${PROJECT_VERSION}")
target_compile_options(velmora_common INTERFACE -Wall -Wextra)
target_include_directories(velmora_common INTERFACE ${PROJECT_SOURCE_DIR}/src)

option(VELMORA_SANITIZE "Build with AddressSanitizer and UBSan" OFF)
if(VELMORA_SANITIZE)
  target_compile_options(velmora_common INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer)
  target_link_options(velmora_common INTERFACE -fsanitize=address,undefined)
endif()

set(VELMORA_CORE_TARGETS "" CACHE INTERNAL "core library targets")

# velmora_core_library(name SOURCES ... LINKS ...): one static library per folder of src/core.
function(velmora_core_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_SOURCES)
    return() # a folder whose first sources are still being written
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC velmora_common ${ARG_LINKS})
  set(VELMORA_CORE_TARGETS ${VELMORA_CORE_TARGETS} ${name} CACHE INTERNAL "core library targets")
endfunction()
