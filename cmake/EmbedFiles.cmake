# Writes OUTPUT, a C++ file holding every file of the folder SOURCE as a byte array, with a table
# of them by name: the dashboard's page, compiled into the emulator (run as cmake -P).
file(GLOB files RELATIVE ${SOURCE} ${SOURCE}/*)
list(SORT files)
set(arrays "")
set(table "")
set(index 0)
foreach(name IN LISTS files)
  if(IS_DIRECTORY ${SOURCE}/${name})
    continue()
  endif()
  file(READ ${SOURCE}/${name} hex HEX)
  file(SIZE ${SOURCE}/${name} size)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  # Sixteen to a line; a zero after the last, so an empty file still makes an array.
  string(REGEX REPLACE "((0x..,){16})" "\\1\n    " bytes "${bytes}")
  string(APPEND arrays "const unsigned char file${index}[] = {\n    ${bytes}0};\n")
  string(APPEND table "    {\"${name}\", file${index}, ${size}},\n")
  math(EXPR index "${index} + 1")
endforeach()
set(text "// Generated from ${SOURCE} by cmake/EmbedFiles.cmake: do not edit.
#include \"Dashboard.h\"

namespace vanto::emulator {

namespace {
${arrays}} // namespace

const DashboardAsset DashboardAssets[] = {
${table}    {\"\", nullptr, 0}};
const std::size_t DashboardAssetCount = ${index};

} // namespace vanto::emulator
")
# Replaced only when it changes, so an unchanged page compiles nothing again.
file(WRITE ${OUTPUT}.new "${text}")
file(COPY_FILE ${OUTPUT}.new ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.new)
