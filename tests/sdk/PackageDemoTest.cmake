# The .zip as a Windows user receives it: made by cpack, unzipped into a scratch folder of the
# build tree, and its demo.cmd run there under Wine (Windows programs only, by Windows paths).
#   cmake -DBUILD=<build tree> -DWORK=<folder below it> -DWINE_RUN=<wine-run>
#         -P PackageDemoTest.cmake
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${WORK})
execute_process(COMMAND ${CMAKE_CPACK_COMMAND} --config ${BUILD}/CPackConfig.cmake -B ${WORK}
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
file(GLOB zip ${WORK}/*.zip)
if(NOT result EQUAL 0 OR NOT zip)
  message(FATAL_ERROR "cpack made no .zip (${result}):\n${output}")
endif()
file(ARCHIVE_EXTRACT INPUT ${zip} DESTINATION ${WORK}/unzipped)
file(GLOB folder ${WORK}/unzipped/*)
foreach(file bin/corvane_emulator.exe bin/vanto_host.exe bin/VANTO.dll demo.cmd
             examples/workspace/corvane-import.json)
  if(NOT EXISTS ${folder}/${file})
    message(FATAL_ERROR "the .zip holds no ${file}")
  endif()
endforeach()

# The programs see the build tree as drive Y: (see wine-run).
file(RELATIVE_PATH demo ${BUILD} ${folder}/demo.cmd)
string(REPLACE "/" "\\" demo "Y:\\${demo}")
execute_process(COMMAND ${WINE_RUN} cmd /c ${demo} RESULT_VARIABLE result OUTPUT_VARIABLE output
                ERROR_VARIABLE output TIMEOUT 300)
string(REPLACE "\r\n" "\n" output "${output}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "demo.cmd failed (${result}):\n${output}")
endif()
# Each step of the scenario, in its order, as its line shows it.
set(expected
    "IsConnected: true"
    "shaft\\.par +yes +yes +Ada Byrne +checked out"
    "shaft\\.par +yes +no +Ada Byrne +refused: held by Ada Byrne"
    "cover\\.par +component +Title +text +Inspection cover"
    "tree: S_OK\n[^\n]*gearbox\\.asm\n[^\n]*shaft-assembly\\.asm\n"
    "where-used: S_OK\n[^\n]*bearing\\.par\n[^\n]*shaft-assembly\\.asm\n[^\n]*gearbox\\.asm\n"
    "IsNewVersionAvailable: true"
    "CheckIn: S_OK\n[^\n]*\n[^\n]*shaft\\.par +0 +-"
    "Emulators stopped")
set(rest "${output}")
foreach(pattern IN LISTS expected)
  string(REGEX MATCH "${pattern}.*" rest "${rest}")
  if(NOT rest)
    message(FATAL_ERROR "demo.cmd did not show, in its order: ${pattern}\n${output}")
  endif()
endforeach()
