# A host developer's path through the SDK: install the build into a scratch prefix, configure and
# build examples/host against that prefix alone, run its two hosts (host.cpp checks out a document
# through the mock; checkout.cpp makes its round trip on the mock and, on Linux, on the installed
# connector emulator, which it starts itself), and run the installed host tool, which must find the
# installed module by itself. On Windows, also the registration script of the install.
#   cmake -DBUILD=<build tree> -DEXAMPLE=<examples/host> -DSAMPLE=<VANTOInput.xml> -DWORK=<folder>
#         -DGENERATOR=<generator> -DBUILD_TYPE=<type> -DCXX_FLAGS=<flags> -DINSTALLED=<files>
#         [-DCXX=<compiler>]                                    Linux
#         [-DTOOLCHAIN=<file> -DWINE_RUN=<wine-run> -DDRIVE_Z=<folder of drive Z:>
#          -DCLSID=<{class id}>]                                Windows
#         -P InstallAndBuildTest.cmake
# INSTALLED lists files, relative to the prefix, that the install must hold.
cmake_minimum_required(VERSION 3.25)

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} failed (${result}):\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_in output)
  foreach(expected IN LISTS ARGN)
    if(NOT output MATCHES "${expected}")
      message(FATAL_ERROR "missing from the output: ${expected}\n${output}")
    endif()
  endforeach()
endfunction()

set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${WORK})
run("install" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
foreach(file IN LISTS INSTALLED)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "the install holds no ${file}")
  endif()
endforeach()

# The example sees the install prefix only: no source tree, no build tree.
set(configure ${CMAKE_COMMAND} -S ${EXAMPLE} -B ${WORK}/example -G ${GENERATOR}
              -DCMAKE_BUILD_TYPE=${BUILD_TYPE} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
if(TOOLCHAIN)
  # The cross toolchain looks for packages below its own root only; a host names the package.
  list(APPEND configure -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DVANTO_DIR=${prefix}/lib/cmake/VANTO)
else()
  list(APPEND configure -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix})
endif()
run("configuring examples/host" ${configure})
run("building examples/host" ${CMAKE_COMMAND} --build ${WORK}/example)
file(GLOB example ${WORK}/example/vanto_example_host ${WORK}/example/vanto_example_host.exe)
file(GLOB checkout ${WORK}/example/vanto_example_checkout
     ${WORK}/example/vanto_example_checkout.exe)

# Runs one of the example hosts, then the AFTER command if one is given: the host must succeed and
# print each expected pattern.
function(run_example what)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "COMMAND;EXPECT;AFTER")
  execute_process(COMMAND ${ARG_COMMAND} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(ARG_AFTER)
    execute_process(COMMAND ${ARG_AFTER} OUTPUT_QUIET ERROR_QUIET)
  endif()
  message("${what}:\n${output}")
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} exited with ${result}")
  endif()
  expect_in("${output}" ${ARG_EXPECT})
endfunction()

if(WINE_RUN)
  # The programs see the build tree as drive Y: (see wine-run); drive Z: is shared by all tests.
  file(RELATIVE_PATH module ${BUILD} ${prefix}/bin/VANTO.dll)
  string(REPLACE "/" "\\" module "Y:\\${module}")
  set(input ${DRIVE_Z}/PDM/VANTO/Dev/VANTOInput.xml)
  set(run_example ${WINE_RUN} ${example} ${module})
  set(run_checkout ${WINE_RUN} ${checkout} --module ${module})
  set(run_tool ${WINE_RUN} ${prefix}/bin/vanto_host.exe)
else()
  set(ENV{VANTO_DRIVE_Z} ${WORK}/drive-z)
  set(input ${WORK}/drive-z/PDM/VANTO/Dev/VANTOInput.xml)
  set(run_example ${example})
  set(run_checkout ${checkout})
  set(run_tool ${prefix}/bin/vanto_host)
endif()
get_filename_component(input_folder ${input} DIRECTORY)
file(MAKE_DIRECTORY ${input_folder})
file(COPY_FILE ${SAMPLE} ${input})
run_example("the example host" COMMAND ${run_example}
            EXPECT "status: 0x00000000, checked out by: Alice.Moreau [(]me[)]"
                   "CheckOut Z:.PDM.Root.bracket.par: 0x00000000")
# The mock leaves the caller's lock states as they came in: nothing is checked out.
run_example("the check-out host on the mock"
            COMMAND ${run_checkout} --mock "Z:\\PDM\\Root\\bracket.par"
            EXPECT "connected\r?\n" "CheckOut: S_OK"
                   "bracket.par: not checked out, open read-only" "nothing to check in"
                   "DllCanUnloadNow: S_FALSE, the module stays loaded")
if(WINE_RUN)
  file(REMOVE ${input})
endif()

# The connector: the installed emulator, on a copy of the example workspace. The host finds it
# not running and starts it; the program it starts is a script that gives the emulator its
# workspace. Ada Byrne checks out a part she may edit, one that Ben Okafor holds and one she may
# only read.
set(emulator ${prefix}/bin/corvane_emulator)
if(NOT WINE_RUN AND EXISTS ${emulator})
  set(data ${WORK}/corvane)
  set(workspace ${WORK}/workspace)
  file(COPY ${EXAMPLE}/../workspace/ DESTINATION ${workspace})
  file(WRITE ${WORK}/start-emulator "#!/bin/sh\nexec '${emulator}' \"$@\" --workspace '${workspace}'\n")
  file(CHMOD ${WORK}/start-emulator PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  set(ENV{VANTO_CORVANE_EMULATOR} ${WORK}/start-emulator)
  set(ENV{VANTO_CORVANE_DATA} ${data})
  # The component's log on standard error: it says why the connector refused.
  set(ENV{VANTO_HOST_LOG} stderr)
  run_example("the check-out host on the emulator"
              COMMAND ${run_checkout} ${workspace}/Gearbox/Shaft/shaft.par
                      ${workspace}/Gearbox/housing.psm ${workspace}/Gearbox/cover.par
              AFTER ${emulator} stop --data ${data}
              EXPECT "starting the Corvane connector" "connected as Ada Byrne"
                     "CheckOut: 0x80004005: the connector refused some documents"
                     "Error while checkout[.]" "shaft.par: checked out, open for editing"
                     "housing.psm: held by Ben Okafor, open read-only"
                     "cover.par: not checked out, open read-only" "CheckIn: S_OK"
                     "shaft.par: checked in" "DllCanUnloadNow: S_FALSE, the module stays loaded")
  unset(ENV{VANTO_HOST_LOG})
endif()

run("the installed vanto_host" ${run_tool} load)
expect_in("${output}" "DllGetClassObject +found" "mock file services +S_OK")

if(WINE_RUN)
  # The registration script beside the installed module writes the module's path under the user's
  # class key, and removes the key again when asked.
  string(REPLACE "VANTO.dll" "register-vanto.cmd" script "${module}")
  set(key "HKCU\\Software\\Classes\\CLSID\\${CLSID}\\InprocServer32")
  run("register-vanto.cmd" ${WINE_RUN} cmd /c ${script})
  run("reg query after registering" ${WINE_RUN} reg query ${key})
  string(FIND "${output}" "${module}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the registration does not name ${module}:\n${output}")
  endif()
  expect_in("${output}" "ThreadingModel +REG_SZ +Apartment")
  run("register-vanto.cmd /u" ${WINE_RUN} cmd /c ${script} /u)
  execute_process(COMMAND ${WINE_RUN} reg query ${key} RESULT_VARIABLE result OUTPUT_QUIET
                  ERROR_QUIET)
  if(result EQUAL 0)
    message(FATAL_ERROR "${key} is still there after register-vanto.cmd /u")
  endif()
endif()
