// One pass of what is to be counted in instructions, for a program that counts them (bench/instructions.py).
#pragma once

#include "task.h"

#include <cstddef>
#include <vector>

namespace bench {

/// A line for each call of measured_run() that run_counted() makes, in that order: task, data set, side, contender and
/// the number of units.
void print_counted(const std::vector<task>& tasks, std::size_t megabytes);

/// Ours and the literal loops over short units, each once through measured_run().
void run_counted(const std::vector<task>& tasks, std::size_t megabytes);

} // namespace bench
