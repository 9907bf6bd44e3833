# cmake -D PROGRAM=... -D LIST=... -P list_suites.cmake   writes a CTest file with a test for each suite of a GoogleTest
# program: a process a test would cost more than the tests.
execute_process(COMMAND ${PROGRAM} --gtest_list_tests OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "(^|\n)[^ \n]+\\.[ \n]" suites "${listed}")
if(NOT suites)
    message(FATAL_ERROR "${PROGRAM} lists no suite")
endif()
set(tests)
foreach(suite IN LISTS suites)
    string(REGEX REPLACE "\\.[ \n]$" "" suite "${suite}")
    string(STRIP "${suite}" suite)
    string(APPEND tests "add_test([==[${suite}]==] [==[${PROGRAM}]==] [==[--gtest_filter=${suite}.*]==] --gtest_brief=1)\n")
endforeach()
file(WRITE ${LIST} "${tests}")
