# The Debian 12 package of the tool (scripts/package; cpack -G DEB in a build
# folder): what `cmake --install` lays out under /usr, with its dependencies
# found by dpkg-shlibdeps, and put in Debian's places by debian/layout.cmake.
set(ZV_MAINTAINER "ZV4280 test bench maintainers <maintainers@users.noreply.c-seed-9dd8763c.example>")
string(TIMESTAMP ZV_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(debian/changelog.in ${CMAKE_CURRENT_BINARY_DIR}/changelog @ONLY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zv4280tb)
set(CPACK_PACKAGE_CONTACT ${ZV_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "register tool for the ZV4280 RF receiver")
set(CPACK_PACKAGE_DESCRIPTION "Reads, writes, saves and loads the 291 registers of a ZV4280 receiver
through its USB bridge board, edited as named fields on forms with their
physical values. The package holds the desktop program, the command-line
tool zv4280ctl with its scripting protocol and Python client, and the udev
rule that opens the bridge boards to the group plugdev and the desktop's user.")
execute_process(COMMAND dpkg --print-architecture OUTPUT_VARIABLE ZV_DEB_ARCH OUTPUT_STRIP_TRAILING_WHITESPACE)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${ZV_DEB_ARCH})
set(CPACK_DEBIAN_FILE_NAME zv4280tb_${PROJECT_VERSION}_${ZV_DEB_ARCH}.deb)
set(ZV_DEB_FILE ${CMAKE_BINARY_DIR}/${CPACK_DEBIAN_FILE_NAME} CACHE INTERNAL "The package that cpack makes")
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The Python client and the start script need no more than the system has;
# the client is of use only with python3.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS python3)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/postinst)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/layout.cmake)
set(CPACK_ZV_COPYRIGHT ${CMAKE_CURRENT_SOURCE_DIR}/debian/copyright)
set(CPACK_ZV_CHANGELOG ${CMAKE_CURRENT_BINARY_DIR}/changelog)
include(CPack)
