# Writes SHA256SUMS into the directory that will be packed: one line per file, sorted by name, in the
# form that `sha256sum -c` reads.

set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}")
file(GLOB_RECURSE names LIST_DIRECTORIES FALSE RELATIVE "${root}" "${root}/*")
list(SORT names)
set(lines "")
foreach(name IN LISTS names)
  file(SHA256 "${root}/${name}" sum)
  string(APPEND lines "${sum}  ${name}\n")
endforeach()
file(WRITE "${root}/SHA256SUMS" "${lines}")
# The mode must not depend on the user's umask.
file(CHMOD "${root}/SHA256SUMS"
  PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
