# What `cmake --install` places. `program`: the programs with their pages, completion and documents.
# `development`: three libraries with their headers, a CMake package, quillet.pc and the example.
# Users write #include <quillet/trace/trace_file.h> and link Quillet::quillet, or what pkg-config
# says of quillet. The folder app/ is the program's own: neither its headers nor its library leave.
include(CMakePackageConfigHelpers)

install(TARGETS quillet COMPONENT program)
install(FILES docs/quillet.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES docs/quilletrc.5 docs/quillet-formats.5
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT program)
install(DIRECTORY completions/ DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT program)

# The documents keep their places to each other, so that their links hold.
install(FILES README.md CHANGELOG.md CITATION.cff CONTRIBUTING.md LICENSE
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program
        FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
install(FILES workflow/README.md workflow/Snakefile workflow/slurm-array.sh
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/workflow COMPONENT program)
install(DIRECTORY examples/installed DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
        COMPONENT development)

# The static libraries; quillet.pc links each before those that it needs.
set(libraries quillet_output quillet_trace quillet_foundation)
foreach(library IN LISTS libraries)
  string(REPLACE "quillet_" "" export_name ${library})
  set_target_properties(${library} PROPERTIES EXPORT_NAME ${export_name})
endforeach()
add_library(quillet_interface INTERFACE)  # all three as one
set_target_properties(quillet_interface PROPERTIES EXPORT_NAME quillet)
target_link_libraries(quillet_interface INTERFACE ${libraries})
add_library(Quillet::quillet ALIAS quillet_interface)

# Headers go to include/quillet, which CMake makes an include directory; <quillet/...> needs the
# folder above. Programs for 1.0.0 wrote "trace/trace_file.h", and still may.
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/quillet)
target_include_directories(quillet_foundation
                           INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillet)
install(TARGETS ${libraries} quillet_interface EXPORT QuilletTargets
        ARCHIVE COMPONENT development
        FILE_SET HEADERS DESTINATION ${header_dir} COMPONENT development)
install(EXPORT QuilletTargets NAMESPACE Quillet:: DESTINATION ${package_dir}
        COMPONENT development)

# Installed headers include each other as <quillet/...>, so that a user's own "foundation/string.h"
# can not take the place of ours.
install(CODE "
  file(GLOB_RECURSE headers \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${header_dir}/*.h\")
  foreach(header IN LISTS headers)
    file(READ \"\${header}\" text)
    string(REGEX REPLACE \"#include \\\"([^\\\"]+)\\\"\" \"#include <quillet/\\\\1>\" text \"\${text}\")
    file(WRITE \"\${header}\" \"\${text}\")
  endforeach()" COMPONENT development)

write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuilletConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES cmake/QuilletConfig.cmake ${PROJECT_BINARY_DIR}/QuilletConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

# quillet.pc finds the prefix from its own place: what is installed may be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
list(TRANSFORM libraries PREPEND -l OUTPUT_VARIABLE link_flags)
list(JOIN link_flags " " link_flags)
configure_file(cmake/quillet.pc.in ${PROJECT_BINARY_DIR}/quillet.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quillet.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
