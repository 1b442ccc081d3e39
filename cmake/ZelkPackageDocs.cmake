# Run by cpack when the components are installed and not yet packed: adds what Debian wants to find
# in each package.

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # of SOURCE_DATE_EPOCH, if that is set
file(READ "${CMAKE_CURRENT_LIST_DIR}/../LICENSE" license)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} name)
  set(share "${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share")
  set(doc "${share}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}")
  file(
    WRITE "${doc}/copyright"
    "${license}\nThe licences of GMP are in /usr/share/common-licenses/LGPL-3 and\n"
    "/usr/share/common-licenses/GPL-2.\n")
  file(
    WRITE "${doc}/changelog"
    "zelk (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
    "  * CHANGELOG.md in the sources says what this version brings.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  if(component STREQUAL "tools")
    file(COPY "${CMAKE_CURRENT_LIST_DIR}/../docs/command.md"
              "${CMAKE_CURRENT_LIST_DIR}/../docs/certificates.md" DESTINATION "${doc}")
    # Debian's own Python runs its scripts.
    execute_process(
      COMMAND sed -i "1s|/usr/bin/env python3|/usr/bin/python3|"
              "${share}/../bin/zelk-check-certificate" COMMAND_ERROR_IS_FATAL ANY)
  elseif(component STREQUAL "python")
    file(COPY "${CMAKE_CURRENT_LIST_DIR}/../docs/python.md" DESTINATION "${doc}")
  endif()
  file(GLOB pages "${share}/man/*/*")
  execute_process(COMMAND gzip -9n "${doc}/changelog" ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
