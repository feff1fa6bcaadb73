# Run by cpack on the staged files before it makes the .deb: where and how
# Debian 12 wants what a plain install under /usr lays out otherwise.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
if(NOT EXISTS ${root}/usr/bin/zv4280tb)
  message(FATAL_ERROR "no staged install under ${root}")
endif()

# udev takes the rules of packages from /lib/udev/rules.d.
file(MAKE_DIRECTORY ${root}/lib/udev)
file(RENAME ${root}/usr/lib/udev/rules.d ${root}/lib/udev/rules.d)
file(REMOVE_RECURSE ${root}/usr/lib/udev)

# The Python client where Debian's python3 of any version finds it.
file(GLOB client ${root}/usr/lib/python3.*/dist-packages/zv4280.py)
if(client)
  file(MAKE_DIRECTORY ${root}/usr/lib/python3/dist-packages)
  file(RENAME ${client} ${root}/usr/lib/python3/dist-packages/zv4280.py)
  get_filename_component(version_dir ${client} DIRECTORY)
  get_filename_component(version_dir ${version_dir} DIRECTORY)
  file(REMOVE_RECURSE ${version_dir})
endif()

# Manual pages and the changelog are compressed; copyright and changelog
# stand in the package's doc folder.
set(doc ${root}/usr/share/doc/${CPACK_PACKAGE_NAME})
file(MAKE_DIRECTORY ${doc})
file(COPY ${CPACK_ZV_COPYRIGHT} DESTINATION ${doc})
file(COPY ${CPACK_ZV_CHANGELOG} DESTINATION ${doc})
file(GLOB pages ${root}/usr/share/man/man*/*.[1-9] ${doc}/changelog)
foreach(page IN LISTS pages)
  execute_process(COMMAND gzip -9nf ${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
