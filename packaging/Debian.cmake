# The Debian packages, one for each component; script/package makes them.
foreach(component dpc twdiskprobe)
    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${component})
    install(FILES debian/copyright DESTINATION ${folder} COMPONENT ${component})
    install_packed(${component} debian/changelog ${folder})
endforeach()

install(FILES debian/twdiskprobe.lintian-overrides RENAME twdiskprobe
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT twdiskprobe)

# No revision of Debian's: the packages come with the programs.
file(STRINGS debian/changelog newest LIMIT_COUNT 1)
string(REGEX MATCH "\\((.+)\\)" newest ${newest})
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
    message(FATAL_ERROR "packaging/debian/changelog is of version ${CMAKE_MATCH_1}")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME twdiskprobe)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "editor and checker for the config files of a speed test")
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
# One package per component, and none of what has no component.
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL dpc twdiskprobe)
set(CPACK_COMPONENTS_GROUPING IGNORE)

set(CPACK_DEBIAN_DPC_PACKAGE_NAME dpc)
set(CPACK_COMPONENT_DPC_DESCRIPTION
"checker and runner for the config files of a speed test
A speed test for disks, file servers and networks runs on many machines at
the same moment and reads what to do from config files: one line per task,
chained into a series.
.
dpc reads such a series and says what will go wrong before machines run it.
It shows, compares and explains a series, runs it on fio, on one machine or
on many, and shows the results. It needs no display.")
# Until 0.2.0 one package held all.
set(CPACK_DEBIAN_DPC_PACKAGE_BREAKS "twdiskprobe (<< 0.2.0)")
set(CPACK_DEBIAN_DPC_PACKAGE_REPLACES "twdiskprobe (<< 0.2.0)")
# With all that it needs fio is over a hundred packages, and who only checks does without.
set(CPACK_DEBIAN_DPC_PACKAGE_SUGGESTS "fio (>= 3.33)")

set(CPACK_DEBIAN_TWDISKPROBE_PACKAGE_NAME twdiskprobe)
set(CPACK_COMPONENT_TWDISKPROBE_DESCRIPTION
"editor for the config files of a speed test
The speed test for disks, file servers and networks runs on many machines
at the same moment and reads what to do from config files: one line per
task, chained into a series.
.
twDiskProbe makes such files: fill in a form, collect tasks in
a table, save a numbered series, load it back. It runs no test itself; the
command dpc, which comes with it, checks and runs a series.")
set(CPACK_DEBIAN_TWDISKPROBE_PACKAGE_DEPENDS "dpc (= ${PROJECT_VERSION})")

# The packages depend on the libraries that the programs load; their own library comes with dpc.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
include(CPack)
