# A Debian package of the installation: cpack -G DEB in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME fluvane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Fluvane developers")
set(CPACK_PACKAGE_CONTACT ${FLUVANE_PACKAGE_MAINTAINER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/open_folders.cmake)

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "flow and heat transfer on unstructured meshes")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Fluvane simulates fluid flow and heat transfer, with optional melting and
freezing, on unstructured meshes by the discrete unified gas-kinetic scheme:
two-dimensional cases on triangles and quadrilaterals, three-dimensional ones
on tetrahedra. It reads Fluent ASCII meshes and writes Tecplot files.
.
The package also holds sample cases with velocity sets, and companions that
prepare meshes and draw results.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# The libraries come from the program itself; what it needs beyond them is said here.
find_program(SHLIBDEPS_PROGRAM dpkg-shlibdeps)
if(SHLIBDEPS_PROGRAM)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3:any")
string(JOIN ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS
  fonts-liberation    # a stand-in for Times New Roman
  fonts-wqy-zenhei    # Chinese characters in the help and version texts
  python3-numpy       # both companions: arrays
  python3-matplotlib  # fluvane-view: pictures and lines
  python3-gmsh        # fluvane-mesh: makes meshes
  python3-meshio)     # fluvane-mesh: reads meshes of other programs
include(CPack)
