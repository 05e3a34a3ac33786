# Checks a built Windows module as the loader sees it, from its PE tables:
#   cmake -D OBJDUMP=<x86_64-w64-mingw32-objdump> -D MODULE=<VANTO.dll> [-D PROGRAM=ON]
#         -P CheckWindowsModule.cmake
# It must import nothing but Windows' own DLLs (the GCC and C++ runtimes are linked in
# statically) and, unless it is a PROGRAM, export exactly DllGetClassObject and DllCanUnloadNow,
# by name.
cmake_minimum_required(VERSION 3.25)

foreach(variable OBJDUMP MODULE)
  if(NOT DEFINED ${variable})
    message(FATAL_ERROR "${variable} is not set")
  endif()
endforeach()

execute_process(COMMAND ${OBJDUMP} -p ${MODULE} OUTPUT_VARIABLE tables RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${OBJDUMP} -p ${MODULE} failed (${status})")
endif()

string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${tables}")
list(TRANSFORM imports REPLACE "^DLL Name: " "")
list(TRANSFORM imports TOLOWER)
list(REMOVE_DUPLICATES imports)
if(NOT imports)
  message(FATAL_ERROR "${MODULE} imports nothing; objdump's output was not understood")
endif()
set(system_dlls advapi32.dll bcrypt.dll kernel32.dll msvcrt.dll ntdll.dll ole32.dll oleaut32.dll
                mswsock.dll rpcrt4.dll shell32.dll ucrtbase.dll user32.dll ws2_32.dll)
foreach(dll IN LISTS imports)
  if(NOT dll IN_LIST system_dlls AND NOT dll MATCHES "^api-ms-win-")
    message(FATAL_ERROR "${MODULE} imports ${dll}, which is not a Windows system DLL")
  endif()
endforeach()
if(PROGRAM)
  message(STATUS "${MODULE}: imports ${imports}")
  return()
endif()

# Export names, from the "[Ordinal/Name Pointer] Table" section: "\t[   0] Name".
string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table\n(\t\\[ *[0-9]+\\] [^\n]*\n)*" names "${tables}")
string(REGEX MATCHALL "\t\\[ *[0-9]+\\] [^\n]+" exports "${names}")
list(TRANSFORM exports REPLACE "^\t\\[ *[0-9]+\\] " "")
list(SORT exports)
set(expected DllCanUnloadNow DllGetClassObject)
if(NOT exports STREQUAL expected)
  message(FATAL_ERROR "${MODULE} exports [${exports}], expected exactly [${expected}]")
endif()

# No function is exported by ordinal alone: the address table has as many entries as names.
if(NOT tables MATCHES "Number in:\n\tExport Address Table[ \t]+([0-9a-fA-F]+)\n")
  message(FATAL_ERROR "${MODULE}: objdump's export table was not understood")
endif()
math(EXPR addresses "0x${CMAKE_MATCH_1}")
if(NOT addresses EQUAL 2)
  message(FATAL_ERROR "${MODULE} exports ${addresses} addresses, expected 2")
endif()

message(STATUS "${MODULE}: exports ${exports}; imports ${imports}")
