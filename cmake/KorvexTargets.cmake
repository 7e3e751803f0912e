# What every target of the project shares: language, warnings, and arithmetic that the compiler may
# not fuse, so that an answer never depends on the target's instruction set.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(KORVEX_CCACHE ccache)
if(KORVEX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${KORVEX_CCACHE}")
endif()

function(korvex_target name)
  target_compile_features(${name} PUBLIC cxx_std_20)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${name} PRIVATE -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion
                                         -Wshadow)
  if(KORVEX_WERROR)
    target_compile_options(${name} PRIVATE -Werror)
  endif()
  if(KORVEX_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${KORVEX_SANITIZE} -fno-omit-frame-pointer
                                           -fno-sanitize-recover=all)
    target_link_options(${name} PRIVATE -fsanitize=${KORVEX_SANITIZE})
  endif()
endfunction()
