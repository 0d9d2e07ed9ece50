# Makes a file's bytes part of the program, by way of a C++ source that is written while building. An assembler
# or a linker could take the file as it is, but each of them in a language of its own; this needs only cmake and
# the compiler.

if(CMAKE_SCRIPT_MODE_FILE)
  # The build's own call: cmake -DINPUT=file -DTEMPLATE=source.in -DOUTPUT=source -P embed_file.cmake
  file(READ "${INPUT}" HEX_BYTES HEX)
  string(REGEX REPLACE "(..)" "0x\\1," BYTES "${HEX_BYTES}")
  file(READ "${TEMPLATE}" SOURCE)
  string(CONFIGURE "${SOURCE}" SOURCE @ONLY)
  file(WRITE "${OUTPUT}" "${SOURCE}")
  return()
endif()

set(EMBED_FILE_SCRIPT "${CMAKE_CURRENT_LIST_FILE}")

# embed_file(TARGET INPUT TEMPLATE): adds TEMPLATE, a C++ source whose name ends in ".in", to TARGET with @BYTES@
# in it replaced by the bytes of INPUT as the elements of an array. Written anew when either changes.
function(embed_file target input template)
  cmake_path(GET template STEM LAST_ONLY source)
  set(output "${CMAKE_CURRENT_BINARY_DIR}/${source}")
  cmake_path(ABSOLUTE_PATH input NORMALIZE)
  cmake_path(ABSOLUTE_PATH template NORMALIZE)
  add_custom_command(
    OUTPUT "${output}"
    COMMAND "${CMAKE_COMMAND}" "-DINPUT=${input}" "-DTEMPLATE=${template}" "-DOUTPUT=${output}"
      -P "${EMBED_FILE_SCRIPT}"
    DEPENDS "${input}" "${template}" "${EMBED_FILE_SCRIPT}"
    COMMENT "Embedding ${input}"
    VERBATIM)
  target_sources(${target} PRIVATE "${output}")
endfunction()
