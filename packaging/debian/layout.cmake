# Run by CPack between installing and packing: what Debian has elsewhere than other systems, or in another form.

set(usr "${CPACK_TEMPORARY_DIRECTORY}/usr")
set(documents "${usr}/share/doc/heapgauge")
set(manuals "${usr}/share/man/man1")

# move(FILE FROM TO): from where the build directory is configured to install it.
function(move file from to)
  file(MAKE_DIRECTORY "${to}")
  file(RENAME "${usr}/${from}/${file}" "${to}/${file}")
endfunction()

move(CHANGELOG.md "${CPACK_HEAPGAUGE_DOCUMENTS}" "${documents}")
move(LICENSE "${CPACK_HEAPGAUGE_DOCUMENTS}" "${documents}")
move(heapgauge.1 "${CPACK_HEAPGAUGE_MANUALS}/man1" "${manuals}")
move(_heapgauge "${CPACK_HEAPGAUGE_ZSH_COMPLETIONS}" "${usr}/share/zsh/vendor-completions")
execute_process(COMMAND find "${usr}" -type d -empty -delete COMMAND_ERROR_IS_FATAL ANY)

# compress(FILE): without its name and time, which differ between two builds.
function(compress file)
  execute_process(COMMAND gzip --best --no-name --force "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(RENAME "${documents}/CHANGELOG.md" "${documents}/changelog")
compress("${documents}/changelog")
compress("${manuals}/heapgauge.1")

# The licence stands in there.
file(REMOVE "${documents}/LICENSE")
configure_file("${CPACK_HEAPGAUGE_PACKAGING}/copyright" "${documents}/copyright" COPYONLY)

execute_process(
  COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date --utc "--date=@$ENV{SOURCE_DATE_EPOCH}" --rfc-email
  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file("${CPACK_HEAPGAUGE_PACKAGING}/changelog.in" "${documents}/changelog.Debian" @ONLY)
compress("${documents}/changelog.Debian")
