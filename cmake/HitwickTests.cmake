# GoogleTest, and the one way in which a folder's tests become a program and CTest entries.

include(GoogleTest)
if(CMAKE_CROSSCOMPILING)
  # No cross-built package exists: the library is built from the sources that Debian ships.
  set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
else()
  find_package(GTest REQUIRED)
endif()

# hitwick_tests(NAME SOURCES file... LIBRARIES folder... [LABEL label])
#
# Makes NAME_tests from test files; every test case becomes one CTest entry with the label
# (default: unit). Cross-built, the whole program is one entry: there each start costs more than
# the cases themselves.
function(hitwick_tests name)
  cmake_parse_arguments(arg "" "LABEL" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT arg_LABEL)
    set(arg_LABEL unit)
  endif()
  add_executable(${name}_tests ${arg_SOURCES})
  # What is tested is built like the program; the tests themselves compile in a third of the time
  # without optimisation (with the sanitizers: 13 s for 40), and run hardly slower.
  target_compile_options(${name}_tests PRIVATE
    $<$<NOT:$<CXX_COMPILER_ID:MSVC>>:-O0>)
  target_link_libraries(${name}_tests PRIVATE hitwick_flags GTest::gmock GTest::gtest_main)
  foreach(folder IN LISTS arg_LIBRARIES)
    target_link_libraries(${name}_tests PRIVATE hitwick_${folder})
  endforeach()
  if(WIN32)
    hitwick_windows_services(${name}_tests)
  endif()
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${name} COMMAND ${name}_tests)
    set_tests_properties(${name} PROPERTIES LABELS ${arg_LABEL})
  else()
    gtest_discover_tests(${name}_tests DISCOVERY_TIMEOUT 120 PROPERTIES LABELS ${arg_LABEL})
  endif()
endfunction()

# Tells these test files where the tree lies, as HITWICK_SOURCE_DIR. Only those that read it: the
# others compile to the same bytes in every checkout.
function(hitwick_reads_tree)
  set_source_files_properties(
    ${ARGN} PROPERTIES COMPILE_DEFINITIONS HITWICK_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
  )
endfunction()
