# If SOURCE_DATE_EPOCH is set, packs again what cpack has packed: sorted by name, with this time for every
# file, and without the user's name and the time zone. So the same files always give the same archive.

if("$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  return()
endif()

get_filename_component(directory "${CPACK_TEMPORARY_INSTALL_DIRECTORY}" DIRECTORY)
get_filename_component(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}" NAME)
foreach(archive IN LISTS CPACK_PACKAGE_FILES)
  file(REMOVE "${archive}")
  if(archive MATCHES "\\.zip$")
    file(GLOB_RECURSE files LIST_DIRECTORIES FALSE RELATIVE "${directory}" "${directory}/${root}/*")
    list(SORT files)
    list(JOIN files "\n" names)
    file(WRITE "${directory}/files.txt" "${names}\n")
    execute_process(
      COMMAND xargs -d "\\n" touch -d @$ENV{SOURCE_DATE_EPOCH}
      INPUT_FILE "${directory}/files.txt"
      WORKING_DIRECTORY "${directory}"
      COMMAND_ERROR_IS_FATAL ANY)
    execute_process(
      COMMAND ${CMAKE_COMMAND} -E env TZ=UTC zip -q -X -9 "${archive}" -@
      INPUT_FILE "${directory}/files.txt"
      WORKING_DIRECTORY "${directory}"
      COMMAND_ERROR_IS_FATAL ANY)
  else()
    execute_process(
      COMMAND tar --create --sort=name --format=ustar --owner=0 --group=0 --numeric-owner
        --mode=u=rwX,go=rX --mtime=@$ENV{SOURCE_DATE_EPOCH} "${root}"
      COMMAND gzip -n -9
      OUTPUT_FILE "${archive}"
      WORKING_DIRECTORY "${directory}"
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
