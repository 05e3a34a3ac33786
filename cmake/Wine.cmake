# Windows programs of a cross build run under Wine through build/<preset>/wine-run, which keeps a
# Wine prefix of its own in the build tree. It is the emulator of every target, so ctest (and test
# discovery) run the tests through it.
find_program(VANTO_WINE NAMES wine REQUIRED)
find_program(VANTO_WINESERVER NAMES wineserver REQUIRED)

set(VANTO_WINEPREFIX ${CMAKE_BINARY_DIR}/wine-prefix)
# The prefix's drive Z:, where the tests create the files the component reads at fixed paths.
set(VANTO_WINE_DRIVE_Z ${CMAKE_BINARY_DIR}/wine-z)
set(VANTO_WINE_RUN ${CMAKE_BINARY_DIR}/wine-run)

configure_file(${CMAKE_CURRENT_LIST_DIR}/wine-run.in ${VANTO_WINE_RUN} @ONLY
               FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                WORLD_READ WORLD_EXECUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${VANTO_WINE_RUN})
