# The camera families, in the order in which they are scanned: the name of the family's files, the
# source file of the simulated SDK, the base name of the maker's SDK, and the number of simulated
# cameras.
set(families
  "asi asi_camera2 ASICamera2 4"
  "playerone player_one_camera PlayerOneCamera 3"
  "qhy qhyccd qhyccd 4"
  "toupcam toupcam toupcam 4")

# From these rows:
#   ORVANE_FAMILIES          the names of the families' files
#   ORVANE_SDKS              the base names of the SDKs
#   ORVANE_SDKS_JOINED       the same as oc_libraries() joins them
#   ORVANE_SIMULATED_SDKS    the targets of the simulated SDKs, for add_dependencies()
#   ORVANE_SIMULATOR_<sdk>   the source file of one of them
#   ORVANE_SIMULATED_CAMERAS the number of cameras of all of them
set(ORVANE_SIMULATED_CAMERAS 0)
foreach(row IN LISTS families)
  separate_arguments(row)
  list(POP_FRONT row family simulator sdk cameras)
  list(APPEND ORVANE_FAMILIES ${family})
  list(APPEND ORVANE_SDKS ${sdk})
  list(APPEND ORVANE_SIMULATED_SDKS simulated_${sdk})
  set(ORVANE_SIMULATOR_${sdk} ${simulator}.cpp)
  math(EXPR ORVANE_SIMULATED_CAMERAS "${ORVANE_SIMULATED_CAMERAS} + ${cameras}")
endforeach()
list(JOIN ORVANE_SDKS ", " ORVANE_SDKS_JOINED)

# The families' files in a directory, one each: PREFIX<family>SUFFIX.
function(orvane_family_files result prefix suffix)
  set(files ${ORVANE_FAMILIES})
  list(TRANSFORM files PREPEND ${prefix})
  list(TRANSFORM files APPEND ${suffix})
  set(${result} ${files} PARENT_SCOPE)
endfunction()
