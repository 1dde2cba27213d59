# What `cmake --install` places, in three components: `program` with its pages, completion and
# documents; `development`, the four libraries with their headers (under include/quillet, where
# their paths stay as they are) and a CMake package, so that find_package(Quillet) gives the target
# Quillet::quillet; and `licence`, which packages state in their own way.
include(CMakePackageConfigHelpers)

install(TARGETS quillet COMPONENT program)
install(FILES docs/quillet.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES docs/quilletrc.5 docs/quillet-formats.5
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT program)
install(FILES packaging/quillet.bash-completion RENAME quillet
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
install(FILES README.md CHANGELOG.md CITATION.cff
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program
        FILES_MATCHING PATTERN "*.md")
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT licence)

set(libraries quillet_foundation quillet_trace quillet_output quillet_app)
foreach(library IN LISTS libraries)
  string(REPLACE "quillet_" "" export_name ${library})
  set_target_properties(${library} PROPERTIES EXPORT_NAME ${export_name})
endforeach()
add_library(quillet_interface INTERFACE)  # all four as one
set_target_properties(quillet_interface PROPERTIES EXPORT_NAME quillet)
target_link_libraries(quillet_interface INTERFACE ${libraries})
add_library(Quillet::quillet ALIAS quillet_interface)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillet)
install(TARGETS ${libraries} quillet_interface EXPORT QuilletTargets
        ARCHIVE COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillet COMPONENT development)
install(EXPORT QuilletTargets NAMESPACE Quillet:: DESTINATION ${package_dir}
        COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuilletConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES cmake/QuilletConfig.cmake ${PROJECT_BINARY_DIR}/QuilletConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)
