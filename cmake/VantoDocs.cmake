# The HTML reference of the installed headers, made by Doxygen (a program of the build machine, so
# the Windows cross build makes the same pages for its .zip). Part of every build with tests: the
# packages carry it, and an undocumented public name fails the build and the test Doc.*. A build
# without tests (fuzz, bench) makes it when doxygen is there.
option(VANTO_BUILD_DOCS "Build the HTML reference of the public headers (needs doxygen)" ON)
if(NOT VANTO_BUILD_DOCS)
  return()
endif()
find_program(VANTO_DOXYGEN doxygen)
if(NOT VANTO_DOXYGEN)
  if(VANTO_BUILD_TESTS)
    message(FATAL_ERROR "doxygen is needed for the HTML reference (scripts/deps installs it; "
                        "-DVANTO_BUILD_DOCS=OFF builds without it)")
  endif()
  return()
endif()

set(VANTO_DOC_HEADERS ${PROJECT_SOURCE_DIR}/include/VANTO.h
                      ${PROJECT_SOURCE_DIR}/platform/com/ComBase.h
                      ${PROJECT_SOURCE_DIR}/platform/host/GUserText.h)
# One configuration for the build's pages, one for the test's own run (its pages go elsewhere, so
# that a test run never leaves the build's pages half written).
foreach(use IN ITEMS docs doc-test)
  set(VANTO_DOC_OUTPUT ${CMAKE_BINARY_DIR}/${use})
  configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${CMAKE_BINARY_DIR}/${use}/Doxyfile @ONLY)
endforeach()

set(VANTO_DOC_HTML ${CMAKE_BINARY_DIR}/docs/html)
# The stamp is written only after a clean run: a run that failed is run again next time.
add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/docs/built.stamp
                   COMMAND ${CMAKE_COMMAND} -E remove_directory ${VANTO_DOC_HTML}
                   COMMAND ${VANTO_DOXYGEN} ${CMAKE_BINARY_DIR}/docs/Doxyfile
                   COMMAND ${CMAKE_COMMAND} -E touch ${CMAKE_BINARY_DIR}/docs/built.stamp
                   DEPENDS ${VANTO_DOC_HEADERS} ${PROJECT_SOURCE_DIR}/docs/Doxyfile.in
                   WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/docs
                   COMMENT "HTML reference of the public headers (doxygen)" VERBATIM)
add_custom_target(docs ALL DEPENDS ${CMAKE_BINARY_DIR}/docs/built.stamp)

if(VANTO_BUILD_TESTS)
  add_test(NAME Doc.EveryPublicNameIsDocumented COMMAND ${VANTO_DOXYGEN} Doxyfile
           WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/doc-test)
endif()
