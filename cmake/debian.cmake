# What the Debian package holds, and how CPack makes it. The programs can be built without.
find_program(GZIP gzip REQUIRED)
find_program(CMARK cmark-gfm)
if(NOT CMARK)
  message(STATUS "The Debian package cannot be made: its manuals need cmark-gfm.")
  return()
endif()
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

# A profile and a message file to begin with are those that the manual shows.
function(add_example file page first_line)
  set(example ${CMAKE_BINARY_DIR}/examples/${file})
  add_custom_command(OUTPUT ${example}
                     COMMAND sed -n "/^    \\[${first_line}]/,/^$/s/^    //p" docs/help/${page}.md > ${example}
                     WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                     DEPENDS docs/help/${page}.md VERBATIM)
endfunction()
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/examples)
add_example(profile.ini profile Profile)
add_example(Rotacasts.ini message-file Messages)

set(maintainer "The ${ROTACASTS_VENDOR} <${ROTACASTS_CONTACT}>")
set(changelog ${CMAKE_BINARY_DIR}/changelog)
add_custom_command(OUTPUT ${changelog}.gz
                   COMMAND scripts/debian-changelog ${maintainer} > ${changelog}
                   COMMAND ${GZIP} -9nf ${changelog}
                   WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                   DEPENDS CHANGELOG.md scripts/debian-changelog VERBATIM)
add_custom_target(package_documents ALL
                  DEPENDS ${packed_manuals} ${changelog}.gz ${CMAKE_BINARY_DIR}/examples/profile.ini
                          ${CMAKE_BINARY_DIR}/examples/Rotacasts.ini)

install(TARGETS rotacasts-host game-server-sim DESTINATION bin)
foreach(manual ${packed_manuals})
  string(REGEX REPLACE ".*\\.([0-9])\\.gz" "\\1" section ${manual})
  install(FILES ${manual} DESTINATION share/man/man${section})
endforeach()
install(FILES package/debian/rotacasts-host@.service DESTINATION lib/systemd/system)
install(DIRECTORY ${CMAKE_BINARY_DIR}/examples DESTINATION share/doc/rotacasts)
install(FILES package/copyright ${changelog}.gz DESTINATION share/doc/rotacasts)
foreach(program rotacasts-host game-server-sim)  # bash looks for each under its name
  install(FILES package/debian/completion DESTINATION share/bash-completion/completions
          RENAME ${program})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME rotacasts)
set(CPACK_PACKAGE_CONTACT ${maintainer})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "posts chat messages to game servers, round and round")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Rotacasts sends the messages of a list to the players of a dedicated game
server, one every few minutes, while a game is running. A message may be a
placeholder for a live text, such as the next map or the player with the
most kills, which is read from the game server's memory.
.
It serves Delta Force: Black Hawk Down, Joint Operations: Typhoon Rising and
Delta Force: Xtreme 2, natively or under Wine. One service can look after many
game servers. Administrators change messages in files, at a console or on a
page in the browser. The package also has a simulated game server to try it
with.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The last one is loaded at run time, when the page is asked for.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "adduser, libmicrohttpd12 | libmicrohttpd12t64")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS systemd)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA package/debian/postinst package/debian/prerm
                                       package/debian/postrm)
list(TRANSFORM CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA PREPEND ${CMAKE_SOURCE_DIR}/)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
