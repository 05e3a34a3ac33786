# Targets of the component. Sources are collected per folder so that a new file needs no edit here.

file(GLOB_RECURSE VANTO_PLATFORM_SOURCES CONFIGURE_DEPENDS
     ${PROJECT_SOURCE_DIR}/platform/os/*.cpp
     ${PROJECT_SOURCE_DIR}/platform/core/*.cpp
     ${PROJECT_SOURCE_DIR}/platform/host/*.cpp
     ${PROJECT_SOURCE_DIR}/platform/connector/*.cpp)
# Test seams are not part of the component.
list(FILTER VANTO_PLATFORM_SOURCES EXCLUDE REGEX "/platform/connector/Fake[^/]*\\.cpp$")
list(FILTER VANTO_PLATFORM_SOURCES EXCLUDE REGEX "/platform/os/(DynamicLibrary|Console|ChildProcess)[^/]*\\.cpp$")
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
file(GLOB_RECURSE VANTO_TESTING_SOURCES CONFIGURE_DEPENDS
     ${PROJECT_SOURCE_DIR}/platform/connector/Fake*.cpp)
add_library(vanto_testing STATIC ${VANTO_TESTING_SOURCES})
target_link_libraries(vanto_testing PUBLIC vanto_static)

# What a host needs to load the component: the public header, module loading and the console.
add_library(vanto_hostsupport STATIC ${PROJECT_SOURCE_DIR}/platform/os/DynamicLibrary_posix.cpp
                                     ${PROJECT_SOURCE_DIR}/platform/os/DynamicLibrary_win32.cpp
                                     ${PROJECT_SOURCE_DIR}/platform/os/Console_posix.cpp
                                     ${PROJECT_SOURCE_DIR}/platform/os/Console_win32.cpp
                                     ${PROJECT_SOURCE_DIR}/platform/os/ChildProcess_posix.cpp
                                     ${PROJECT_SOURCE_DIR}/platform/os/ChildProcess_win32.cpp)
target_link_libraries(vanto_hostsupport PUBLIC vanto_platform ${CMAKE_DL_LIBS})
if(WIN32)
  target_link_libraries(vanto_hostsupport PUBLIC shell32)
endif()

add_subdirectory(tools)

if(VANTO_BUILD_TESTS)
  enable_testing()
  add_subdirectory(tests)
endif()
if(VANTO_BUILD_FUZZ)
  add_subdirectory(fuzz)
endif()
if(VANTO_BUILD_BENCH AND EXISTS ${PROJECT_SOURCE_DIR}/bench/CMakeLists.txt)
  add_subdirectory(bench)
endif()

# The mock's XML reader is Boost templates throughout; left unoptimised (Debug, sanitizers) a large
# input file takes seconds to read.
set_source_files_properties(${PROJECT_SOURCE_DIR}/src/mock/MockStore.cpp
                            PROPERTIES COMPILE_OPTIONS $<$<CONFIG:Debug>:-O1>)
