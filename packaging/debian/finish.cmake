# Between installing and packing: gives each package what Debian asks of it: copyright, both
# changelogs, pages that are compressed in the same bytes every time, and no sections in binaries
# that nobody needs.
set(source_dir ${CMAKE_CURRENT_LIST_DIR}/../..)

function(compress)
  foreach(file IN LISTS ARGN)
    execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
endfunction()

foreach(pair program:quillet development:libquillet-dev)
  string(REGEX MATCH "(.*):(.*)" unused ${pair})
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${CMAKE_MATCH_1})
  set(package ${CMAKE_MATCH_2})
  set(documents ${root}/usr/share/doc/${package})

  configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${documents}/copyright COPYONLY)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog ${documents}/changelog.Debian COPYONLY)
  configure_file(${source_dir}/CHANGELOG.md ${documents}/changelog COPYONLY)
  file(REMOVE ${documents}/CHANGELOG.md)
  file(GLOB pages ${root}/usr/share/man/man*/*)
  compress(${documents}/changelog.Debian ${documents}/changelog ${pages})

  file(GLOB binaries ${root}/usr/bin/* ${root}/usr/lib/*/*.a)
  execute_process(COMMAND strip --strip-debug --enable-deterministic-archives
                          --remove-section=.comment --remove-section=.note ${binaries}
                  COMMAND_ERROR_IS_FATAL ANY)

  set(overrides ${CMAKE_CURRENT_LIST_DIR}/${package}.lintian-overrides)
  if(EXISTS ${overrides})
    configure_file(${overrides} ${root}/usr/share/lintian/overrides/${package} COPYONLY)
  endif()
endforeach()
