# Runs the host's demo as scripts/demo does, on a drive Z: of its own, and checks what it printed.
#   cmake -DHOST=<vanto_host> -DSAMPLE=<VANTOInput.xml> -DDRIVE=<folder> -P DemoTest.cmake
file(REMOVE_RECURSE "${DRIVE}")
file(MAKE_DIRECTORY "${DRIVE}/PDM/VANTO/Dev")
file(COPY_FILE "${SAMPLE}" "${DRIVE}/PDM/VANTO/Dev/VANTOInput.xml")
set(ENV{VANTO_DRIVE_Z} "${DRIVE}")
execute_process(COMMAND "${HOST}" demo RESULT_VARIABLE result OUTPUT_VARIABLE output
                ERROR_VARIABLE output)
message("${output}")
if(NOT result EQUAL 0 OR NOT IS_DIRECTORY "${DRIVE}/PDM/Root")
  message(FATAL_ERROR "vanto_host demo exited with ${result}, or made no root folder")
endif()
foreach(expected
        "found: yes"
        "Z:\\\\PDM\\\\Root [(]here: [^)]*/PDM/Root[)], folder exists: yes"
        "Z:\\\\PDM\\\\Root\\\\bracket.par +valid"
        "C:\\\\Temp\\\\outside.par +not valid"
        "Z:\\\\PDM\\\\Root\\\\bracket.par +S_OK, checked out by: Alice.Moreau [(]me[)]"
        "Z:\\\\PDM\\\\Root\\\\housing.asm +S_OK, checked out by: b.tanaka\n"
        "CheckOut: S_OK.*items unchanged.*CheckIn: S_OK.*items unchanged")
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "missing from the demo's output: ${expected}")
  endif()
endforeach()
