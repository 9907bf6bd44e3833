# Sourced by the scripts that build and test: on a terminal they show what they are doing, in a pipe they stay quiet.

# run_logged LOG COMMAND...   runs a command; a terminal sees its progress, and anybody the log of one that failed.
run_logged() {
    local log=$1
    shift
    if [ -t 1 ]; then
        "$@"
    elif ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# build PRESET [TARGET...]   configures and builds.
build() {
    local preset=$1
    shift
    mkdir -p build
    if ! cmake --preset "$preset" >"build/$preset.configure.log" 2>&1; then
        cat "build/$preset.configure.log" >&2
        return 1
    fi
    run_logged "build/$preset.build.log" cmake --build --preset "$preset" ${1:+--target "$@"}
}

# took   how long the script has run so far, in words.
took() {
    local seconds=$SECONDS
    [ "$seconds" -lt 60 ] || printf '%d min ' $((seconds / 60))
    printf '%d s' $((seconds % 60))
}
