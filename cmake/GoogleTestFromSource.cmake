# GoogleTest and GoogleMock built from the sources that Debian's googletest package installs, for a
# cross build (the build machine's libraries are of no use there). The source tree defines the
# same GTest:: targets that find_package(GTest) gives.
set(VANTO_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest source tree")
if(NOT EXISTS ${VANTO_GOOGLETEST_SOURCE}/CMakeLists.txt)
  message(FATAL_ERROR "No GoogleTest sources in ${VANTO_GOOGLETEST_SOURCE} (Debian: googletest)")
endif()

set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${VANTO_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
