# Compile settings every Velmora target shares, as one INTERFACE target.
add_library(velmora_common_base INTERFACE)
target_compile_definitions(velmora_common_base INTERFACE
  QT_NO_CAST_TO_ASCII
  QT_USE_QSTRINGBUILDER
  QT_NO_FOREACH
  QT_DISABLE_DEPRECATED_BEFORE=0x050F00
  VELMORA_VERSION="${PROJECT_VERSION}")
target_compile_options(velmora_common_base INTERFACE -Wall -Wextra)
target_include_directories(velmora_common_base INTERFACE ${PROJECT_SOURCE_DIR}/src)

# Product code: no implicit QString from char data at all.
add_library(velmora_common INTERFACE)
target_link_libraries(velmora_common INTERFACE velmora_common_base)
target_compile_definitions(velmora_common INTERFACE QT_NO_CAST_FROM_ASCII)

# Tests may write string literals where a QString is wanted, nothing looser.
add_library(velmora_test_common INTERFACE)
target_link_libraries(velmora_test_common INTERFACE velmora_common_base)
target_compile_definitions(velmora_test_common INTERFACE QT_RESTRICTED_CAST_FROM_ASCII)

# Fuzzing instruments every library for coverage; only the fuzz targets link the fuzzer's main.
if(VELMORA_FUZZ)
  target_compile_options(velmora_common_base INTERFACE -fsanitize=fuzzer-no-link,address -fno-omit-frame-pointer)
  target_link_options(velmora_common_base INTERFACE -fsanitize=address)
endif()

option(VELMORA_SANITIZE "Build with AddressSanitizer and UBSan" OFF)
if(VELMORA_SANITIZE)
  target_compile_options(velmora_common_base INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer)
  target_link_options(velmora_common_base INTERFACE -fsanitize=address,undefined)
endif()

set(VELMORA_CORE_TARGETS "" CACHE INTERNAL "core library targets")

# velmora_core_library(name SOURCES ... LINKS ...): one static library per folder of src/core.
function(velmora_core_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_SOURCES)
    return() # a folder whose first sources are still being written
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  # The strict defines stay private: users of a library choose their own.
  target_link_libraries(${name} PRIVATE velmora_common PUBLIC ${ARG_LINKS})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  set(VELMORA_CORE_TARGETS ${VELMORA_CORE_TARGETS} ${name} CACHE INTERNAL "core library targets")
endfunction()
