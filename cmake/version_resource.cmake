# Gives a Windows binary the project's version and a description, as the properties of its file show them.
function(add_version_resource target file description)
  set(version_file ${file})
  set(version_description ${description})
  string(REPLACE "." "," version_numbers "${PROJECT_VERSION},0")
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
endfunction()
