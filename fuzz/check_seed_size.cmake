# cmake -D SEEDS=FOLDER -D MOST_BYTES=N -P check_seed_size.cmake: fails when the files of the folder have more bytes
# together, or when there are none.
file(GLOB_RECURSE seeds "${SEEDS}/*")
set(total 0)
foreach(seed IN LISTS seeds)
    file(SIZE "${seed}" size)
    math(EXPR total "${total} + ${size}")
endforeach()
if(total EQUAL 0 OR total GREATER MOST_BYTES)
    message(FATAL_ERROR "the seeds have ${total} bytes, of at most ${MOST_BYTES}")
endif()
