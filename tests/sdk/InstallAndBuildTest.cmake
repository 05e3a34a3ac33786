# A host developer's path through the SDK: install the build into a scratch prefix, configure and
# build examples/host against that prefix alone, run it (it checks out a document through the
# mock), and run the installed host tool, which must find the installed module by itself. On
# Windows, also the registration script of the install.
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

if(WINE_RUN)
  # The programs see the build tree as drive Y: (see wine-run); drive Z: is shared by all tests.
  file(RELATIVE_PATH module ${BUILD} ${prefix}/bin/VANTO.dll)
  string(REPLACE "/" "\\" module "Y:\\${module}")
  set(input ${DRIVE_Z}/PDM/VANTO/Dev/VANTOInput.xml)
  set(run_example ${WINE_RUN} ${example} ${module})
  set(run_tool ${WINE_RUN} ${prefix}/bin/vanto_host.exe)
else()
  set(ENV{VANTO_DRIVE_Z} ${WORK}/drive-z)
  set(input ${WORK}/drive-z/PDM/VANTO/Dev/VANTOInput.xml)
  set(run_example ${example})
  set(run_tool ${prefix}/bin/vanto_host)
endif()
get_filename_component(input_folder ${input} DIRECTORY)
file(MAKE_DIRECTORY ${input_folder})
file(COPY_FILE ${SAMPLE} ${input})
execute_process(COMMAND ${run_example} RESULT_VARIABLE result OUTPUT_VARIABLE output
                ERROR_VARIABLE output)
if(WINE_RUN)
  file(REMOVE ${input})
endif()
message("${output}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the example host exited with ${result}")
endif()
expect_in("${output}" "status: 0x00000000, checked out by: Alice.Moreau [(]me[)]"
          "CheckOut Z:.PDM.Root.bracket.par: 0x00000000")

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
