# Run by CPack between installing and packing: what Debian has elsewhere than other systems, or in another form.

set(share "${CPACK_TEMPORARY_DIRECTORY}/usr/share")
set(documents "${share}/doc/heapgauge")

# compress(FILE): without its name and time, which differ between two builds.
function(compress file)
  execute_process(COMMAND gzip --best --no-name --force "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(RENAME "${documents}/CHANGELOG.md" "${documents}/changelog")
compress("${documents}/changelog")
compress("${share}/man/man1/heapgauge.1")

# The licence stands in there.
file(REMOVE "${documents}/LICENSE")
configure_file("${CPACK_HEAPGAUGE_PACKAGING}/copyright" "${documents}/copyright" COPYONLY)

execute_process(
  COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date --utc "--date=@$ENV{SOURCE_DATE_EPOCH}" --rfc-email
  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file("${CPACK_HEAPGAUGE_PACKAGING}/changelog.in" "${documents}/changelog.Debian" @ONLY)
compress("${documents}/changelog.Debian")

set(from "${CPACK_TEMPORARY_DIRECTORY}/usr/${CPACK_HEAPGAUGE_ZSH_COMPLETIONS}")
set(to "${share}/zsh/vendor-completions")
if(NOT from STREQUAL to)
  file(MAKE_DIRECTORY "${to}")
  file(RENAME "${from}/_heapgauge" "${to}/_heapgauge")
  file(REMOVE_RECURSE "${from}")
endif()
