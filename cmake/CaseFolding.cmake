# Writes Unicode's simple case folding (the entries of status C and S in CaseFolding.txt, which
# Debian's unicode-data installs) as C++ initialisers, one {code point, folded} pair a line, in the
# file's order, which is by code point:
#   cmake -D SOURCE=/usr/share/unicode/CaseFolding.txt -D OUTPUT=<file> -P CaseFolding.cmake
cmake_minimum_required(VERSION 3.25)

file(STRINGS ${SOURCE} lines REGEX "^[0-9A-F]+; [CS]; [0-9A-F]+;")
if(NOT lines)
  message(FATAL_ERROR "${SOURCE} has no simple case folding")
endif()
list(TRANSFORM lines REPLACE "^([0-9A-F]+); [CS]; ([0-9A-F]+);.*" "{0x\\1, 0x\\2},")
list(JOIN lines "\n" pairs)
file(CONFIGURE OUTPUT ${OUTPUT}.new CONTENT "@pairs@\n" @ONLY)
file(COPY_FILE ${OUTPUT}.new ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.new)
