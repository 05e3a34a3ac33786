# What a host developer receives: the install tree with its CMake package (find_package(VANTO 1.0)),
# the version resource of the Windows module, and the .deb (Linux) or .zip (Windows) made by cpack.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# ---- Install layout ----------------------------------------------------------------------------
# The headers keep their folders (VANTO.h includes "com/..." and "host/..."), under a folder of
# their own so that those generic names do not land in the system's include folder.
set(VANTO_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/vanto)
set(VANTO_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/VANTO)
if(WIN32)
  # Beside the tools, where Windows looks first for a program's DLLs.
  set(VANTO_INSTALL_MODULEDIR ${CMAKE_INSTALL_BINDIR})
  set(VANTO_INSTALL_DOCDIR .)
else()
  # A module loaded by path is no library for the linker to find: a folder of its own.
  set(VANTO_INSTALL_MODULEDIR ${CMAKE_INSTALL_LIBDIR}/vanto)
  set(VANTO_INSTALL_DOCDIR ${CMAKE_INSTALL_DATADIR}/doc/vanto)
endif()
set(VANTO_MODULE_FILE VANTO${CMAKE_SHARED_MODULE_SUFFIX})

# The version resource: the file's properties and a host's diagnostics show the version.
if(WIN32)
  enable_language(RC)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/VANTO.rc.in ${CMAKE_BINARY_DIR}/VANTO.rc @ONLY)
  target_sources(VANTO PRIVATE ${CMAKE_BINARY_DIR}/VANTO.rc)
endif()

# The host tool looks for the module beside itself (the build tree), then where the install puts it.
file(RELATIVE_PATH VANTO_MODULE_FROM_BINDIR /${CMAKE_INSTALL_BINDIR}
     /${VANTO_INSTALL_MODULEDIR}/${VANTO_MODULE_FILE})
if(TARGET vanto_host)
  target_compile_definitions(vanto_host
                             PRIVATE VANTO_INSTALLED_MODULE="${VANTO_MODULE_FROM_BINDIR}")
endif()

# ---- What a host compiles and links against ----------------------------------------------------
# The interfaces' data hold GUserText, the host's text class. Its stand-in goes with the headers
# as a small static library, compiled on its own so that it carries nothing else of the platform.
add_library(vanto_usertext STATIC ${PROJECT_SOURCE_DIR}/platform/host/GUserText.cpp
                                  ${VANTO_TEXT_SOURCES})
target_include_directories(vanto_usertext PRIVATE ${PROJECT_SOURCE_DIR}/platform)
if(WIN32)
  target_link_libraries(vanto_usertext PUBLIC advapi32)
endif()
set_target_properties(vanto_usertext PROPERTIES EXPORT_NAME usertext)

# The one target a host links: the public headers, the text class and, on Windows, the COM
# libraries that define IID_IUnknown and IID_IClassFactory.
add_library(vanto_headers INTERFACE)
target_include_directories(vanto_headers
                           INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                                     $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform>
                                     $<INSTALL_INTERFACE:${VANTO_INSTALL_INCLUDEDIR}>)
target_link_libraries(vanto_headers INTERFACE vanto_usertext)
if(WIN32)
  target_link_libraries(vanto_headers INTERFACE ole32 uuid)
endif()
set_target_properties(vanto_headers PROPERTIES EXPORT_NAME headers)
set_target_properties(VANTO PROPERTIES EXPORT_NAME module)

# ---- Install rules -----------------------------------------------------------------------------
install(TARGETS VANTO vanto_usertext vanto_headers EXPORT VANTOTargets
        LIBRARY DESTINATION ${VANTO_INSTALL_MODULEDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Exactly what VANTO.h includes; the install-and-build test compiles a host against these alone.
install(FILES ${PROJECT_SOURCE_DIR}/include/VANTO.h DESTINATION ${VANTO_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/platform/com/ComBase.h
        DESTINATION ${VANTO_INSTALL_INCLUDEDIR}/com)
install(FILES ${PROJECT_SOURCE_DIR}/platform/host/GUserText.h
        DESTINATION ${VANTO_INSTALL_INCLUDEDIR}/host)
# Each tool that this build makes.
foreach(tool vanto_host corvane_emulator)
  if(TARGET ${tool})
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/LICENSE
        DESTINATION ${VANTO_INSTALL_DOCDIR})

# ---- The HTML reference (cmake/VantoDocs.cmake) ------------------------------------------------
if(TARGET docs)
  install(DIRECTORY ${VANTO_DOC_HTML}/ DESTINATION ${VANTO_INSTALL_DOCDIR}/reference)
  set(VANTO_INSTALLED_REFERENCE "\;${VANTO_INSTALL_DOCDIR}/reference/index.html")
endif()

install(EXPORT VANTOTargets NAMESPACE VANTO:: DESTINATION ${VANTO_INSTALL_CMAKEDIR})
set(VANTO_INSTALL_MODULE ${VANTO_INSTALL_MODULEDIR}/${VANTO_MODULE_FILE})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/VANTOConfig.cmake.in
                              ${CMAKE_BINARY_DIR}/VANTOConfig.cmake
                              INSTALL_DESTINATION ${VANTO_INSTALL_CMAKEDIR}
                              PATH_VARS VANTO_INSTALL_MODULE)
# One major version keeps its interfaces; the package is for one pointer size.
write_basic_package_version_file(${CMAKE_BINARY_DIR}/VANTOConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/VANTOConfig.cmake ${CMAKE_BINARY_DIR}/VANTOConfigVersion.cmake
        DESTINATION ${VANTO_INSTALL_CMAKEDIR})

# Windows: the module has no self-registration, so a script beside it registers it for the user.
if(WIN32)
  # The class id as the registry writes it, from the one definition in VANTO.h.
  file(READ ${PROJECT_SOURCE_DIR}/include/VANTO.h VANTO_HEADER)
  string(REGEX MATCH "CLSID_VANTOManager = {[^;]*}" VANTO_CLSID_INIT "${VANTO_HEADER}")
  string(REGEX MATCHALL "0x[0-9a-fA-F]+" VANTO_CLSID_PARTS "${VANTO_CLSID_INIT}")
  list(LENGTH VANTO_CLSID_PARTS VANTO_CLSID_COUNT)
  if(NOT VANTO_CLSID_COUNT EQUAL 11)
    message(FATAL_ERROR "CLSID_VANTOManager was not understood in include/VANTO.h")
  endif()
  set(VANTO_CLSID_WIDTHS 8 4 4 2 2 2 2 2 2 2 2)
  set(digits "")
  foreach(part width IN ZIP_LISTS VANTO_CLSID_PARTS VANTO_CLSID_WIDTHS)
    string(REGEX REPLACE "^0x" "0000000" part ${part}) # zeros in place of 0x, then the last digits
    string(LENGTH ${part} length)
    math(EXPR start "${length} - ${width}")
    string(SUBSTRING ${part} ${start} ${width} part)
    list(APPEND digits ${part})
  endforeach()
  string(TOUPPER "${digits}" digits)
  list(GET digits 0 1 2 head)
  list(JOIN head - head)
  list(SUBLIST digits 3 2 clock)
  list(JOIN clock "" clock)
  list(SUBLIST digits 5 6 node)
  list(JOIN node "" node)
  set(VANTO_CLSID "{${head}-${clock}-${node}}")
  configure_file(${CMAKE_CURRENT_LIST_DIR}/register-vanto.cmd.in
                 ${CMAKE_BINARY_DIR}/register-vanto.cmd @ONLY NEWLINE_STYLE CRLF)
  install(PROGRAMS ${CMAKE_BINARY_DIR}/register-vanto.cmd DESTINATION ${VANTO_INSTALL_MODULEDIR})
  # The example workspace and a demo on it with the programs of the package (see README.md,
  # "On Windows").
  configure_file(${CMAKE_CURRENT_LIST_DIR}/demo.cmd.in ${CMAKE_BINARY_DIR}/demo.cmd @ONLY
                 NEWLINE_STYLE CRLF)
  install(PROGRAMS ${CMAKE_BINARY_DIR}/demo.cmd DESTINATION .)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/workspace DESTINATION examples)
endif()

# ---- Packages ----------------------------------------------------------------------------------
set(CPACK_PACKAGE_NAME vanto)
set(CPACK_PACKAGE_VENDOR VANTO)
set(CPACK_PACKAGE_CONTACT "VANTO developers <vanto-dev@example.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "VANTO PDM component for CAD hosts: module, headers, CMake package and tools")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_RESOURCE_FILE_README ${PROJECT_SOURCE_DIR}/README.md)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME vanto-${PROJECT_VERSION}-windows-x64)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)

# ---- The install as a host uses it -------------------------------------------------------------
if(VANTO_BUILD_TESTS)
  set(VANTO_SDK_TEST_ARGS
      -DBUILD=${CMAKE_BINARY_DIR} -DEXAMPLE=${PROJECT_SOURCE_DIR}/examples/host
      -DSAMPLE=${PROJECT_SOURCE_DIR}/examples/VANTOInput.xml -DWORK=${CMAKE_BINARY_DIR}/sdk-test
      -DGENERATOR=${CMAKE_GENERATOR} -DBUILD_TYPE=${CMAKE_BUILD_TYPE}
      "-DINSTALLED=${VANTO_INSTALL_DOCDIR}/README.md\;${VANTO_INSTALL_DOCDIR}/LICENSE\;${VANTO_INSTALL_CMAKEDIR}/VANTOConfigVersion.cmake${VANTO_INSTALLED_REFERENCE}")
  # A host with strict warnings compiles the headers cleanly; a sanitized module wants a
  # sanitized host.
  set(VANTO_SDK_TEST_FLAGS "-Wall -Wextra -Wpedantic -Werror")
  if(VANTO_SANITIZE)
    string(APPEND VANTO_SDK_TEST_FLAGS " -fsanitize=address,undefined")
  endif()
  if(CMAKE_CROSSCOMPILING)
    list(APPEND VANTO_SDK_TEST_ARGS -DTOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} -DWINE_RUN=${VANTO_WINE_RUN}
         -DDRIVE_Z=${VANTO_WINE_DRIVE_Z} -DCLSID=${VANTO_CLSID})
  else()
    list(APPEND VANTO_SDK_TEST_ARGS -DCXX=${CMAKE_CXX_COMPILER})
  endif()
  add_test(NAME Sdk.InstallsAndBuildsTheExampleHost
           COMMAND ${CMAKE_COMMAND} ${VANTO_SDK_TEST_ARGS} "-DCXX_FLAGS=${VANTO_SDK_TEST_FLAGS}"
                   -P ${PROJECT_SOURCE_DIR}/tests/sdk/InstallAndBuildTest.cmake)
  set_tests_properties(Sdk.InstallsAndBuildsTheExampleHost PROPERTIES TIMEOUT 600)
  if(WIN32)
    set_tests_properties(Sdk.InstallsAndBuildsTheExampleHost PROPERTIES RESOURCE_LOCK wine-prefix)
  endif()
  if(WIN32 AND CMAKE_CROSSCOMPILING)
    add_test(NAME Package.UnzipsAndRunsTheDemo
             COMMAND ${CMAKE_COMMAND} -DBUILD=${CMAKE_BINARY_DIR} -DWORK=${CMAKE_BINARY_DIR}/zip-test
                     -DWINE_RUN=${VANTO_WINE_RUN}
                     -P ${PROJECT_SOURCE_DIR}/tests/sdk/PackageDemoTest.cmake)
    set_tests_properties(Package.UnzipsAndRunsTheDemo PROPERTIES TIMEOUT 600
                                                                 RESOURCE_LOCK wine-prefix)
  endif()
endif()
