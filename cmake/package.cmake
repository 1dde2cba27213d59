# The Debian packages `quillet` and `libquillet-dev`, one for each component that is installed.
# tools/package builds them as the archive wants them; SOURCE_DATE_EPOCH fixes every time in them.
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL program development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish.cmake)

set(CPACK_PACKAGE_NAME quillet)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Quillet maintainers <quillet@hallorand.example>")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# What the program runs: gunzip and rm. Both packages are essential, and such a package may only be
# named with a version. dpkg-shlibdeps finds the libraries.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME quillet)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "gzip (>= 1.10), coreutils (>= 8.30)")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION [[batch converter for Sanger sequencing traces
Quillet converts the chromatograms of a Sanger sequencing project, whole
directories at a time, into the PHD and poly files that assemblers, viewers
and polymorphism detectors read. The traces may be ABIF or SCF files, plain
or gzipped. The base calls, qualities and peak positions are those that the
instrument's own base caller stored; the poly files list for each base the
called peak and its strongest competitor.]])

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libquillet-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libstdc++-12-dev)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION [[reader and writers of Sanger sequencing traces, for C++
Headers, static libraries and a CMake package of what Quillet is made of: a
reader of ABIF and SCF traces, and writers of PHD, poly and SCF files.]])

include(CPack)
