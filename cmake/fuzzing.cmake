# What the fuzz builds are compiled with: every branch tells libFuzzer that it was reached, and the
# standard library's own checks are on.

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "The fuzz targets need clang; use the presets fuzz and fuzz-fast.")
endif()
add_compile_options(-fsanitize=fuzzer-no-link)
add_compile_definitions(_GLIBCXX_ASSERTIONS)
