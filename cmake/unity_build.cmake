# orvane_compile_together(TARGET): compiles the target's files in a few large units instead of one by one.
# GoogleTest's and JSON's templates are then compiled only once for each unit. The library itself is not
# compiled so: it has few files, and what is shipped should not depend on it.

option(ORVANE_UNITY_BUILD "Compile several files of programs and tests together, which is faster" OFF)

function(orvane_compile_together target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${ORVANE_UNITY_BUILD} UNITY_BUILD_BATCH_SIZE 8)
endfunction()
