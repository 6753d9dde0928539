# What the Debian package holds, and how CPack makes it.
find_program(GZIP gzip REQUIRED)
find_program(CMARK cmark-gfm REQUIRED)
file(GLOB pages CONFIGURE_DEPENDS docs/help/*)
file(STRINGS docs/help/manuals manual_lines)
set(manuals)
foreach(line ${manual_lines})
  string(REGEX MATCH "^[^ ]+" manual ${line})
  list(APPEND manuals ${CMAKE_BINARY_DIR}/man/${manual})
endforeach()
list(TRANSFORM manuals APPEND .gz OUTPUT_VARIABLE packed_manuals)
add_custom_command(OUTPUT ${packed_manuals}
                   COMMAND scripts/manuals ${PROJECT_VERSION} ${CMAKE_BINARY_DIR}/man
                   COMMAND ${GZIP} -9nf ${manuals}
                   WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                   DEPENDS ${pages} scripts/manuals)

# A profile to begin with is the one that the manual shows.
set(example ${CMAKE_BINARY_DIR}/profile.ini)
add_custom_command(OUTPUT ${example}
                   COMMAND sed -n "/^    \\[Profile]/,/^$/s/^    //p" docs/help/profile.md > ${example}
                   WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                   DEPENDS docs/help/profile.md VERBATIM)
add_custom_target(manuals ALL DEPENDS ${packed_manuals} ${example})

install(TARGETS rotacasts-host game-server-sim DESTINATION bin)
foreach(manual ${packed_manuals})
  string(REGEX REPLACE ".*\\.([0-9])\\.gz" "\\1" section ${manual})
  install(FILES ${manual} DESTINATION share/man/man${section})
endforeach()
install(FILES package/debian/rotacasts-host@.service DESTINATION lib/systemd/system)
install(FILES ${example} DESTINATION share/doc/rotacasts/examples)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME rotacasts)
set(CPACK_PACKAGE_CONTACT "The Rotacasts administrators <root@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "posts chat messages to game servers, round and round")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The last one is loaded at run time, when the page is asked for.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser, libmicrohttpd12 | libmicrohttpd12t64")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS systemd)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA package/debian/postinst package/debian/prerm
                                       package/debian/postrm)
list(TRANSFORM CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA PREPEND ${CMAKE_SOURCE_DIR}/)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
