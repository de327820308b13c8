# The resources of the Windows programs: version, icon, manifest and event-log messages.
include_guard(GLOBAL)

enable_language(RC)
find_program(HITWICK_MESSAGE_COMPILER NAMES x86_64-w64-mingw32-windmc windmc mc REQUIRED
             DOC "Compiles message tables")

set(HITWICK_RESOURCES ${CMAKE_CURRENT_LIST_DIR})
set(HITWICK_GENERATED_RESOURCES ${CMAKE_BINARY_DIR}/generated/windows)
file(MAKE_DIRECTORY ${HITWICK_GENERATED_RESOURCES})

add_custom_command(
  OUTPUT ${HITWICK_GENERATED_RESOURCES}/messages.rc
  COMMAND ${HITWICK_MESSAGE_COMPILER}
          -h ${HITWICK_GENERATED_RESOURCES} -r ${HITWICK_GENERATED_RESOURCES}
          ${HITWICK_RESOURCES}/messages.mc
  DEPENDS ${HITWICK_RESOURCES}/messages.mc
  VERBATIM)
add_custom_target(hitwick_messages DEPENDS ${HITWICK_GENERATED_RESOURCES}/messages.rc)

# Compiles the resource script into the target.
function(hitwick_link_resources target script)
  set_source_files_properties(${script} TARGET_DIRECTORY ${target} PROPERTIES
    INCLUDE_DIRECTORIES "${HITWICK_RESOURCES};${HITWICK_GENERATED_RESOURCES}"
    OBJECT_DEPENDS
      "${HITWICK_RESOURCES}/hitwick.manifest;${HITWICK_RESOURCES}/hitwick.ico;${HITWICK_RESOURCES}/services.rc")
  target_sources(${target} PRIVATE ${script})
  if(MSVC)
    target_link_options(${target} PRIVATE /MANIFEST:NO)  # it is among the resources
  endif()
  add_dependencies(${target} hitwick_messages)
endfunction()

# hitwick_windows_version(TARGET TYPE DESCRIPTION)
#
# Says in TARGET what it is: VFT_APP, a program, or VFT_DLL, a library.
function(hitwick_windows_version target type description)
  if(type STREQUAL VFT_DLL)
    set(file ${target}.dll)
  else()
    set(file ${target}.exe)
  endif()
  set(script ${HITWICK_GENERATED_RESOURCES}/${target}_version.rc)
  configure_file(${HITWICK_RESOURCES}/version.rc.in ${script} @ONLY)
  target_sources(${target} PRIVATE ${script})
endfunction()

# hitwick_windows_resources(TARGET)
#
# Makes TARGET, an executable, the program as it is installed: without a console window of its
# own, and with all resources.
function(hitwick_windows_resources target)
  set_target_properties(${target} PROPERTIES WIN32_EXECUTABLE ON)
  hitwick_link_resources(${target} ${HITWICK_RESOURCES}/hitwick.rc)
  hitwick_windows_version(${target} VFT_APP "Hitwick - ${PROJECT_DESCRIPTION}")
endfunction()

# hitwick_windows_services(TARGET)
#
# Gives a console program, such as a test, what the services in platform/ rely on.
function(hitwick_windows_services target)
  hitwick_link_resources(${target} ${HITWICK_RESOURCES}/services.rc)
endfunction()
