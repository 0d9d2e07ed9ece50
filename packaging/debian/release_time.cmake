# Read by CPack first. All files of a package bear the day of the release, unless whoever makes it says otherwise.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND date --utc "--date=${CPACK_HEAPGAUGE_RELEASE_DATE}" +%s
    OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} ${seconds})
endif()
