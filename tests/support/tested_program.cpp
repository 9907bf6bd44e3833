#include "support/run_tool.h"

const char* const support::tested_program = ORV_TEST_TOOL;
