# Included behind project() by tools/mutate.py: sources that ship are compiled each alone, quickly, and
# with the checks of the standard library, so that a change of one costs little.
function(korvex_prepare_for_mutants)
  foreach(target IN ITEMS geometry_objects read_objects preprocess_objects engine_objects
                          report_objects korvex_objects korvex_cli)
    set_target_properties(${target} PROPERTIES UNITY_BUILD OFF)
    target_compile_options(${target} PRIVATE -O1 -D_GLIBCXX_ASSERTIONS)
  endforeach()
endfunction()
cmake_language(DEFER CALL korvex_prepare_for_mutants)
