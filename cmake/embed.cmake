# cmake -D OUT=FILE.cpp -D HEADER=FILE.h -D FUNCTION=NAME -D "FILES=A|B..." -P embed.cmake   writes the function of that name,
# which the header declares: the table of the files, each with its name, its bytes and its SHA-256, in the order given. No
# script or style sheet among them may hold what ends its element in a page.
string(REPLACE "|" ";" FILES "${FILES}")
set(arrays)
set(table)
set(number 0)
foreach(file IN LISTS FILES)
    cmake_path(GET file FILENAME name)
    if(name MATCHES "[.](js|css)$")
        file(READ ${file} text)
        string(TOLOWER "${text}" text)
        if(text MATCHES "</script|</style|<!--|\r")
            message(FATAL_ERROR "${file} cannot stand in a page: it holds ${CMAKE_MATCH_0}")
        endif()
    endif()
    file(READ ${file} digits HEX)
    file(SHA256 ${file} sum)
    string(LENGTH "${digits}" size)
    math(EXPR size "${size} / 2")
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," digits "${digits}")
    string(APPEND arrays "constexpr char part_${number}[] = {${digits}'\\0'};\n")
    string(APPEND table "    {\"${name}\", {part_${number}, ${size}}, \"${sum}\"},\n")
    math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUT} "#include \"${HEADER}\"

namespace orv_h264 {

namespace {

${arrays}
constexpr embedded_file files[] = {
${table}};

} // namespace

std::span<const embedded_file> ${FUNCTION}()
{
    return files;
}

} // namespace orv_h264
")
