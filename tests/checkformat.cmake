# Fails when a source file differs from what .clang-format makes of it.
file(GLOB_RECURSE files "${SOURCE_DIR}/src/*.h" "${SOURCE_DIR}/src/*.cpp"
     "${SOURCE_DIR}/tests/*.h" "${SOURCE_DIR}/tests/*.cpp" "${SOURCE_DIR}/bench/*.h" "${SOURCE_DIR}/bench/*.cpp")
execute_process(COMMAND ${CLANG_FORMAT} --dry-run --Werror ${files}
  WORKING_DIRECTORY ${SOURCE_DIR} RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "clang-format: files need formatting (run tools/format):\n${errors}")
endif()
