# Targets of the component.
#
# The stand-ins of platform/ are listed file by file: one folder holds the component's own part,
# what a host needs to load it and the tests' seams, and each goes into a different target. A file
# of one platform (Name_posix.cpp, Name_win32.cpp) is built on that platform only.
# The component's own code in src/ is collected by folder: all of it goes into the module, and
# nothing in it differs by platform.
if(WIN32)
  set(VANTO_OS win32)
else()
  set(VANTO_OS posix)
endif()
set(VANTO_OS_DIR ${PROJECT_SOURCE_DIR}/platform/os)

# platform/os parts that the GUserText stand-in needs on its own (see VantoPackage.cmake).
set(VANTO_TEXT_SOURCES ${VANTO_OS_DIR}/TextConversion.cpp ${VANTO_OS_DIR}/Os_${VANTO_OS}.cpp
                       ${VANTO_OS_DIR}/Paths.cpp ${VANTO_OS_DIR}/Paths_${VANTO_OS}.cpp)
set(VANTO_PLATFORM_SOURCES
    ${VANTO_TEXT_SOURCES}
    ${VANTO_OS_DIR}/Process_${VANTO_OS}.cpp
    ${VANTO_OS_DIR}/ProcessInfo_${VANTO_OS}.cpp
    ${VANTO_OS_DIR}/UserValues_${VANTO_OS}.cpp
    ${VANTO_OS_DIR}/SocketWait_${VANTO_OS}.cpp
    ${PROJECT_SOURCE_DIR}/platform/core/BoostJson.cpp
    ${PROJECT_SOURCE_DIR}/platform/core/MemoryManager.cpp
    ${PROJECT_SOURCE_DIR}/platform/host/GUserFileName.cpp
    ${PROJECT_SOURCE_DIR}/platform/host/GUserText.cpp
    ${PROJECT_SOURCE_DIR}/platform/host/HostLog.cpp
    ${PROJECT_SOURCE_DIR}/platform/host/HostUtil.cpp
    ${PROJECT_SOURCE_DIR}/platform/connector/ConnectorLink.cpp
    ${PROJECT_SOURCE_DIR}/platform/connector/CorvaneClient.cpp
    ${PROJECT_SOURCE_DIR}/platform/connector/EmulatorConnector.cpp)
file(GLOB_RECURSE VANTO_COMPONENT_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*.cpp)

# Everything compiled once; the DLL, the static library for tests and the host tools share the
# objects. The stand-ins are a library of their own: a host links them as it links the real ones.
add_library(vanto_platform_objects OBJECT ${VANTO_PLATFORM_SOURCES})
target_include_directories(vanto_platform_objects PUBLIC ${PROJECT_SOURCE_DIR}/include
                                                         ${PROJECT_SOURCE_DIR}/platform)
target_link_libraries(vanto_platform_objects PUBLIC vanto_boost)
if(WIN32)
  # Asio: Windows 10 headers, Winsock.
  target_compile_definitions(vanto_platform_objects PUBLIC _WIN32_WINNT=0x0A00)
  target_link_libraries(vanto_platform_objects PUBLIC ole32 oleaut32 uuid advapi32 ws2_32 mswsock)
endif()
add_library(vanto_platform STATIC $<TARGET_OBJECTS:vanto_platform_objects>)
target_link_libraries(vanto_platform PUBLIC vanto_platform_objects)

add_library(vanto_objects OBJECT ${VANTO_COMPONENT_SOURCES})
target_include_directories(vanto_objects PUBLIC ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(vanto_objects PUBLIC vanto_platform_objects)

add_library(vanto_static STATIC $<TARGET_OBJECTS:vanto_objects>
                                $<TARGET_OBJECTS:vanto_platform_objects>)
target_link_libraries(vanto_static PUBLIC vanto_objects)

# The component as the host loads it (a module: loaded, never linked): exports DllGetClassObject and
# DllCanUnloadNow only.
add_library(VANTO MODULE $<TARGET_OBJECTS:vanto_objects> $<TARGET_OBJECTS:vanto_platform_objects>)
target_link_libraries(VANTO PRIVATE vanto_boost)
set_target_properties(VANTO PROPERTIES PREFIX "" OUTPUT_NAME "VANTO")
if(WIN32)
  target_sources(VANTO PRIVATE ${PROJECT_SOURCE_DIR}/src/entry/VANTO.def)
  target_link_libraries(VANTO PRIVATE ole32 oleaut32 uuid advapi32 ws2_32 mswsock)
else()
  target_link_options(VANTO PRIVATE
                      -Wl,--version-script=${PROJECT_SOURCE_DIR}/src/entry/VANTO.map
                      -Wl,--no-undefined)
  set_target_properties(VANTO PROPERTIES LINK_DEPENDS ${PROJECT_SOURCE_DIR}/src/entry/VANTO.map)
endif()

# Test seams of the stand-ins (fake connector and friends).
add_library(vanto_testing STATIC ${PROJECT_SOURCE_DIR}/platform/connector/FakeConnector.cpp)
target_link_libraries(vanto_testing PUBLIC vanto_static)

# What the programs around the component need: module loading, the console, running a program,
# a lock on a file.
add_library(vanto_hostsupport STATIC ${VANTO_OS_DIR}/DynamicLibrary_${VANTO_OS}.cpp
                                     ${VANTO_OS_DIR}/Console_${VANTO_OS}.cpp
                                     ${VANTO_OS_DIR}/ChildProcess_${VANTO_OS}.cpp
                                     ${VANTO_OS_DIR}/FileLock_${VANTO_OS}.cpp)
target_link_libraries(vanto_hostsupport PUBLIC vanto_platform ${CMAKE_DL_LIBS})
if(WIN32)
  target_link_libraries(vanto_hostsupport PUBLIC shell32)
endif()

# The mock's XML reader is Boost templates throughout; left unoptimised (Debug, sanitizers) a large
# input file takes seconds to read.
set_source_files_properties(${PROJECT_SOURCE_DIR}/src/mock/MockStore.cpp
                            PROPERTIES COMPILE_OPTIONS $<$<CONFIG:Debug>:-O1>)
