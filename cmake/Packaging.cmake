# Installing and packaging: the programs under lib/vsstool with links in bin, the spinstand catalogue as a
# configuration file under /etc reached from the programs' folder, the manual pages, the documentation with its
# screenshots, a desktop entry and an icon; CPack makes a Debian package of it (tools/dev package).

set(VSS_PROGRAM_DIR lib/vsstool)
set(VSS_DOC_DIR share/doc/vsstool)
set(VSS_STAGE ${CMAKE_BINARY_DIR}/package-stage)
file(MAKE_DIRECTORY ${VSS_STAGE}/bin ${VSS_STAGE}/lib ${VSS_STAGE}/man)

# The programs, and links to them where the shell finds them.
foreach(program IN ITEMS vsstool vsstool-config)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION ${VSS_PROGRAM_DIR})
        file(CREATE_LINK ../lib/vsstool/${program} ${VSS_STAGE}/bin/${program} SYMBOLIC)
        install(FILES ${VSS_STAGE}/bin/${program} DESTINATION bin)
    endif()
endforeach()

# The catalogue: the program looks beside itself; the file there is a link to the configuration file, so that an
# upgrade keeps what a service engineer edited (or asks before replacing it).
set(VSS_CATALOGUE ${PROJECT_SOURCE_DIR}/app/VssTool.ini)
if(EXISTS ${VSS_CATALOGUE})
    install(FILES ${VSS_CATALOGUE} DESTINATION /etc/vsstool)
    file(CREATE_LINK /etc/vsstool/VssTool.ini ${VSS_STAGE}/lib/VssTool.ini SYMBOLIC)
    install(FILES ${VSS_STAGE}/lib/VssTool.ini DESTINATION ${VSS_PROGRAM_DIR})
    file(WRITE ${VSS_STAGE}/conffiles "/etc/vsstool/VssTool.ini\n")
    set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${VSS_STAGE}/conffiles)
endif()

# Compressed without a time stamp, so that the same sources make the same package.
function(vss_install_gzipped source destination name)
    set(target ${VSS_STAGE}/${name}.gz)
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    execute_process(COMMAND gzip -n -9 -c ${source} OUTPUT_FILE ${target} COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${target} DESTINATION ${destination})
endfunction()
vss_install_gzipped(${PROJECT_SOURCE_DIR}/app/vsstool.1 share/man/man1 vsstool.1)
vss_install_gzipped(${PROJECT_SOURCE_DIR}/tools/vsstool-config/vsstool-config.1 share/man/man1 vsstool-config.1)
vss_install_gzipped(${PROJECT_SOURCE_DIR}/docs/package/changelog ${VSS_DOC_DIR} changelog)

install(FILES ${PROJECT_SOURCE_DIR}/docs/package/copyright ${PROJECT_SOURCE_DIR}/README.md
        DESTINATION ${VSS_DOC_DIR})
file(GLOB vss_docs ${PROJECT_SOURCE_DIR}/docs/*.md)
install(FILES ${vss_docs} DESTINATION ${VSS_DOC_DIR}/docs)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/screenshots DESTINATION ${VSS_DOC_DIR}/docs)
install(FILES ${PROJECT_SOURCE_DIR}/app/vsstool.desktop DESTINATION share/applications)
install(FILES ${PROJECT_SOURCE_DIR}/app/vsstool.svg DESTINATION share/icons/hicolor/scalable/apps)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vsstool)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Velkor Spinstand Tool developers")
set(CPACK_PACKAGE_CONTACT "Velkor Spinstand Tool developers <tools@velkor-spinstand.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "operator, factory and service tool of the Velkor spinstand")
# The extended description, one paragraph, below the synopsis (the package description summary).
string(CONCAT CPACK_DEBIAN_PACKAGE_DESCRIPTION
       "The desktop program for the Velkor spinstand, a hard-disk head test instrument:\n"
       "the operation check, measurement positions, factory and service settings, and\n"
       "vsstool-config, which backs up, restores and compares the instrument's settings\n"
       "through setting files. Without the instrument's driver it runs on a simulated\n"
       "instrument, for training and demonstration.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_WARN_ON_ABSOLUTE_INSTALL_DESTINATION OFF)
set(CPACK_OUTPUT_FILE_PREFIX ${CMAKE_BINARY_DIR}/deb)
include(CPack)
