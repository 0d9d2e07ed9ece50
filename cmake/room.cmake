# heapgauge_room(NAME [HEAVY] SOURCES ... SEES ROOM... [USES LIBRARY...]): the object library of a folder, NAME_objects, the
# rooms below that it may see, and libraries of the system that only its own sources include. Whoever links NAME gets its
# objects and those of all rooms below it, each once, and nothing from above: a room that looks up does not link in its
# own tests. HEAVY is a room whose work takes longer in the sanitizers' builds than optimising it there.
function(heapgauge_room name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "HEAVY" "" "SOURCES;SEES;USES")
  add_library(${name}_objects OBJECT ${ARG_SOURCES})
  if(ARG_HEAVY AND HEAPGAUGE_SANITIZE)
    target_compile_options(${name}_objects PRIVATE -O1)
  endif()
  target_link_libraries(${name}_objects PRIVATE ${ARG_SEES} ${ARG_USES})
  add_library(${name} INTERFACE)
  target_link_libraries(${name} INTERFACE ${ARG_SEES} $<TARGET_OBJECTS:${name}_objects>)
  foreach(library IN LISTS ARG_USES)
    target_link_libraries(${name} INTERFACE $<LINK_ONLY:${library}>)
  endforeach()
endfunction()
