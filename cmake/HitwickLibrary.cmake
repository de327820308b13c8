# Compile flags of the project's own code, and the one way in which a folder becomes a library.

add_library(hitwick_flags INTERFACE)
# Sums are specified operation by operation; a fused multiply-add would round once too seldom.
if(MSVC)
  # Clang in the clothes of Visual Studio's compiler.
  target_compile_options(hitwick_flags INTERFACE
    /W4 /utf-8 /EHsc /clang:-ffp-contract=off $<$<BOOL:${HITWICK_WERROR}>:/WX>)
  target_compile_definitions(hitwick_flags INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
else()
  target_compile_options(hitwick_flags INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -ffp-contract=off
    $<$<BOOL:${HITWICK_WERROR}>:-Werror>)
endif()

# hitwick_library(NAME SOURCES file... [LINKS folder...])
#
# Makes the static library hitwick_NAME of a folder. LINKS names the folders it may include:
# these are the arrows of docs/architecture.md, and the coding rules test holds the includes to them.
function(hitwick_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(hitwick_${name} STATIC ${arg_SOURCES})
  target_include_directories(hitwick_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(hitwick_${name} PRIVATE hitwick_hardening hitwick_flags)
  foreach(folder IN LISTS arg_LINKS)
    target_link_libraries(hitwick_${name} PUBLIC hitwick_${folder})
  endforeach()
endfunction()
