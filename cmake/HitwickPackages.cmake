# What is installed, and the packages made of it: "hitwick" with the windows and "hitwick-server"
# without, as .deb and .tar.gz (cpack, or "make package" for both).

include(GNUInstallDirs)

if(HITWICK_GUI)
  set(package hitwick)
  set(other_package hitwick-server)
else()
  set(package hitwick-server)
  set(other_package hitwick)
endif()

# Debian wants manual and changelog compressed.
function(hitwick_compressed input output)
  set(result ${CMAKE_CURRENT_BINARY_DIR}/packaging/${output})
  add_custom_command(OUTPUT ${result}
    COMMAND gzip -9nc ${input} > ${result}
    DEPENDS ${input})
  set(compressed_files ${compressed_files} ${result} PARENT_SCOPE)
endfunction()

string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(packaging ${CMAKE_CURRENT_BINARY_DIR}/packaging)
configure_file(packaging/linux/debian-changelog.in ${packaging}/changelog @ONLY)
hitwick_compressed(${packaging}/changelog changelog.gz)
hitwick_compressed(${PROJECT_SOURCE_DIR}/docs/hitwick.1 hitwick.1.gz)
add_custom_target(hitwick_package_files ALL DEPENDS ${compressed_files})

# As OpenHelp looks for it: beside the program as built, in the data folder as installed.
add_custom_target(hitwick_help ALL
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${PROJECT_SOURCE_DIR}/docs/help ${CMAKE_BINARY_DIR}
  COMMENT "Copying the help page")

install(TARGETS hitwick DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY docs/help/ DESTINATION ${CMAKE_INSTALL_DATADIR}/hitwick)
install(FILES ${packaging}/hitwick.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/linux/hitwick.bash-completion
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME hitwick)
install(FILES packaging/linux/hitwick@.service packaging/linux/hitwick@.timer
  DESTINATION lib/systemd/system)
install(FILES packaging/linux/hitwick.sysusers DESTINATION lib/sysusers.d RENAME hitwick.conf)
install(FILES ${packaging}/changelog.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package})
install(FILES packaging/linux/copyright README.md
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package})
install(FILES packaging/linux/settings.ini
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}/examples)
if(HITWICK_GUI)
  install(TARGETS hitwick_windows DESTINATION lib/hitwick)
  install(FILES packaging/linux/hitwick.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES packaging/linux/hitwick.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  install(FILES packaging/linux/hitwick.png
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/48x48/apps)
endif()
# An administrator's file, which upgrades leave alone. It stands outside the prefix and so belongs to
# packages of a system only, which are built below another root.
install(CODE "if(DEFINED ENV{DESTDIR})
  file(INSTALL \"${PROJECT_SOURCE_DIR}/packaging/linux/settings.ini\"
    DESTINATION /etc/hitwick)
endif()")

set(CPACK_PACKAGE_NAME ${package})
set(CPACK_PACKAGE_VENDOR "The Hitwick developers")
set(CPACK_PACKAGE_CONTACT "The Hitwick developers <hitwick@hitwick.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "usage statistics from the W3C logs of IIS web servers")
set(CPACK_PACKAGE_DESCRIPTION
  "Hitwick reads the logs of IIS web sites and writes plain HTML pages of usage
statistics: one page a month for each site, an overview of the last twelve
months, and every table as a CSV file on request.")
set(CPACK_PACKAGE_HOMEPAGE_URL ${HITWICK_HOME_PAGE})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/HitwickPackageKinds.cmake)
set(CPACK_SYSTEM_NAME linux-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_ARCHIVE_FILE_NAME ${package}-${PROJECT_VERSION}-${CPACK_SYSTEM_NAME})

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/linux/conffiles ${PROJECT_SOURCE_DIR}/packaging/linux/postinst
  ${PROJECT_SOURCE_DIR}/packaging/linux/prerm)
set(CPACK_DEBIAN_PACKAGE_CONFLICTS ${other_package})
set(CPACK_DEBIAN_PACKAGE_REPLACES ${other_package})
if(HITWICK_GUI)
  # Whoever wants the program without windows is served, too.
  set(CPACK_DEBIAN_PACKAGE_PROVIDES "hitwick-server (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cron")
  string(APPEND CPACK_PACKAGE_DESCRIPTION
    "\n\nThis package has the windows as well; hitwick-server does without a toolkit.")
else()
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cron")
  string(APPEND CPACK_PACKAGE_DESCRIPTION
    "\n\nThis package is for machines without a display; hitwick has windows as well.")
endif()
include(CPack)
