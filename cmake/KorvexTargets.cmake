# What every target of the project shares: language, warnings, and arithmetic that the compiler may
# not fuse, so that an answer never depends on the target's instruction set.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
include(CheckPIESupported)
check_pie_supported()

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
  # What a mistake with memory can be turned into is limited; the sanitizers do better.
  if(NOT KORVEX_SANITIZE)
    target_compile_options(
      ${name} PRIVATE $<$<CONFIG:Release>:-fstack-protector-strong> $<$<CONFIG:Release>:-U_FORTIFY_SOURCE>
                      $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
    target_link_options(${name} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack)
  endif()
  if(KORVEX_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${KORVEX_SANITIZE} -fno-omit-frame-pointer
                                           -fno-sanitize-recover=all)
    target_link_options(${name} PRIVATE -fsanitize=${KORVEX_SANITIZE})
  endif()
endfunction()

# Gives the target sources that are compiled together, as GROUP: what they include is then read once,
# which is most of the work. Names in anonymous namespaces have to differ within a room, and within the
# tests of one.
function(korvex_sources target group)
  target_sources(${target} PRIVATE ${ARGN})
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${KORVEX_UNITY} UNITY_BUILD_MODE GROUP)
  set_source_files_properties(${ARGN} PROPERTIES UNITY_GROUP "${group}")
endfunction()
