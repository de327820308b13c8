# Read by cpack for each kind of package: a .deb goes below the root of a system, a .tar.gz below
# whatever folder it is unpacked in.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_SET_DESTDIR ON)
  set(CPACK_INSTALL_PREFIX /usr)
endif()
