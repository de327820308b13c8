# What makes a mistake in the optimised builds hard to exploit: anybody on the internet may write
# into the logs that the program reads. tests/hardening_test.py reads the finished binaries.
#
# `hitwick_hardening` is for what is installed; how programs are linked holds for all of them. Debug
# and sanitizer builds go without: there nothing is fortified, and the sanitizers see more.

add_library(hitwick_hardening INTERFACE)
if(NOT CMAKE_BUILD_TYPE STREQUAL "Release" OR CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  return()
endif()

# Checked copies and formats of the C library; canaries in functions that hold arrays or give
# addresses of locals away.
target_compile_options(hitwick_hardening INTERFACE
  -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong)

if(WIN32)
  # Any address for the program, over the whole 64 bits, and no code in data. GCC has no
  # control-flow guard: its binaries bear no table of the functions that may be called.
  add_link_options(-fstack-protector-strong
    -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat)
else()
  # Position-independent programs; a module's objects bring their own option. No jump over the
  # stack's guard page. Where the processor can check it, jumps and returns arrive where compiled
  # code sends them.
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    set(jumps -fcf-protection)
  endif()
  target_compile_options(hitwick_hardening INTERFACE
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:POSITION_INDEPENDENT_CODE>>>:-fPIE>
    -fstack-clash-protection
    ${jumps})
  # All addresses of functions are looked up at the start, and their table is read-only afterwards.
  add_link_options(
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>
    -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
