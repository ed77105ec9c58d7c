# The Debian package; script/package makes it.
set(docs ${CMAKE_INSTALL_DATADIR}/doc/twdiskprobe)
install(FILES debian/copyright DESTINATION ${docs})
install_packed(debian/changelog ${docs})

# No revision of Debian's: the package comes with the program.
file(STRINGS debian/changelog newest LIMIT_COUNT 1)
string(REGEX MATCH "\\((.+)\\)" newest ${newest})
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
    message(FATAL_ERROR "packaging/debian/changelog is of version ${CMAKE_MATCH_1}")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME twdiskprobe)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
file(STRINGS debian/changelog signature REGEX "^ -- " LIMIT_COUNT 1)
string(REGEX MATCH "^ -- (.+>)" signature ${signature})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CMAKE_MATCH_1})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor for the config files of a speed test")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"The speed test for disks, file servers and networks runs on many machines
at the same moment and reads what to do from config files: one line per
task, chained into a series.
.
twDiskProbe is where such files are made: fill in a form, collect tasks in
a table, save a numbered series, load it back. It runs no test itself.")

# What the programs load decides what the package depends on; the library of its own it brings along.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
include(CPack)
