# The camera families, in the order in which they are scanned: the name of the family's files, the
# base name of the maker's SDK, and the source file of its simulation.
set(families
  "asi asi_camera2 ASICamera2"
  "playerone player_one_camera PlayerOneCamera"
  "qhy qhyccd qhyccd"
  "toupcam toupcam toupcam")

# From these rows:
#   ORVANE_FAMILIES          the names of the families' files
#   ORVANE_SDKS              the base names of the SDKs
#   ORVANE_SDKS_JOINED       the same as oc_libraries() joins them
#   ORVANE_SIMULATED_SDKS    the targets of the simulated SDKs, for add_dependencies()
#   ORVANE_SIMULATOR_<sdk>   the source file of one of them
foreach(row IN LISTS families)
  separate_arguments(row)
  list(GET row 0 family)
  list(GET row 1 simulator)
  list(GET row 2 sdk)
  list(APPEND ORVANE_FAMILIES ${family})
  list(APPEND ORVANE_SDKS ${sdk})
  list(APPEND ORVANE_SIMULATED_SDKS simulated_${sdk})
  set(ORVANE_SIMULATOR_${sdk} ${simulator}.cpp)
endforeach()
list(JOIN ORVANE_SDKS ", " ORVANE_SDKS_JOINED)

# The families' files in a directory, one each: PREFIX<family>SUFFIX.
function(orvane_family_files result prefix suffix)
  set(files ${ORVANE_FAMILIES})
  list(TRANSFORM files PREPEND ${prefix})
  list(TRANSFORM files APPEND ${suffix})
  set(${result} ${files} PARENT_SCOPE)
endfunction()
