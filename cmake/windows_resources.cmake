# Gives `target` the resources that a program or a DLL for Windows has: its version, whose it is, what
# it is (`description`), and `lines` of a resource script with the files that they need (the rest). The
# plugin reports the version in them: major, minor and revision.
function(add_windows_resources target name description lines)
  list(JOIN lines "\n" further_lines)
  get_target_property(kind ${target} TYPE)
  if(kind STREQUAL "EXECUTABLE")
    set(type VFT_APP)
    set(file ${name}.exe)
    string(PREPEND further_lines "1 ICON \"${PROJECT_SOURCE_DIR}/package/rotacasts.ico\"\n")
  else()
    set(type VFT_DLL)
    set(file ${name}.dll)
  endif()
  set(script ${CMAKE_BINARY_DIR}/generated/${target}/resources.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/windows_resources.rc.in ${script} @ONLY)
  set_source_files_properties(${script} PROPERTIES
                              OBJECT_DEPENDS "${PROJECT_SOURCE_DIR}/package/rotacasts.ico;${ARGN}")
  target_sources(${target} PRIVATE ${script})
endfunction()
