# Sourced by the packaging tests: how they fail and skip, and the names they share.

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# 77 is the SKIP_RETURN_CODE of every packaging test.
skip() {
    printf 'skipped: %s\n' "$*"
    exit 77
}

# The folder of a library's sources, its exports.map and its exports.txt.
folder_of_library() {
    case $1 in
        misc) echo misc ;;
        h2645_common) echo common ;;
        h264) echo lib ;;
        h264_syntax) echo syntax ;;
        *) fail "there is no library $1" ;;
    esac
}

# SONAME, NEEDED, RUNPATH or RPATH of an ELF file, one value a line.
dynamic_entries() {
    local entry=$1 file=$2 section
    section=$(readelf --wide --dynamic "$file") || fail "readelf cannot read $file"
    sed -n "s/.*($entry).*\[\(.*\)\]\$/\1/p" <<<"$section"
}

is_elf() {
    [ "$(head -c 4 "$1" | od -An -c | tr -d ' ')" = 177ELF ]
}

# Runs the consumer, and looks at what it is linked with: shared or static.
check_consumer() {
    local consumer=$1 linkage=$2 printed needed
    local expected="2 units, primary_pic_type 5, malformed code at bit 3"
    printed=$("$consumer")
    [ "$printed" = "$expected" ] || fail "the consumer printed '$printed', not '$expected'"
    needed=$(dynamic_entries NEEDED "$consumer")
    case $linkage in
        shared) [[ $needed == *liborv_utils_v4_h264.so.0* ]] || fail "the consumer does not use the shared library" ;;
        static) [[ $needed != *liborv_* ]] || fail "the consumer of the archives needs" "$needed" ;;
        *) fail "there is no linkage $linkage" ;;
    esac
}
