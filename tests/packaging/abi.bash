# Sourced by check-abi and script/update-abi: how the interface of a library is described, by libabigail.
abi_folder=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../packaging/abi" && pwd)

# shared_of LIBRARY SOURCE BUILD OUT: the objects of a static library of BUILD as the shared one. They are built once for all
# tests of packages, with what debuggers and libabigail are told of types.
shared_of() {
    "${CXX:-g++}" -shared -o "$4" "-Wl,-soname,liborv_utils_v4_$1.so.0" \
        "-Wl,--version-script=$2/$(folder_of_library "$1")/exports.map" \
        -Wl,--whole-archive "$3/liborv_utils_v4_$1.a" -Wl,--no-whole-archive
}

# abi_of LIBRARY SOURCE BUILD OUT: the description; without places in sources, which every change moves.
abi_of() {
    local object=$4.so
    shared_of "$1" "$2" "$3" "$object"
    abidw --suppressions "$abi_folder/ignored.ini" --headers-dir "$2/include" --drop-private-types \
        --no-show-locs --no-corpus-path --no-comp-dir-path "$object" >"$4"
    rm "$object"
}
