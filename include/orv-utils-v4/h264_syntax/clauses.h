/// @file
/// Where H.264 has the table of a structure and what its elements mean, for those who show a trace.
#pragma once

#include <orv-utils-v4/export.h>

namespace orv_utils_v4::h264 {

/// The clause with the syntax table of a structure that visitor::open() names: "7.3.2.1.1" of seq_parameter_set_data.
/// The annex letters are those of the 08/2021 edition. "D.1" and "I.13.1" alone stand for tables whose clauses below
/// these are numbered otherwise from edition to edition.
/// @param structure the name; not null
/// @return "" for a name that no table of H.264 has, as those of registered user data; valid as long as the program
ORV_UTILS_V4_EXPORT const char* clause_of(const char* structure) noexcept;

/// Likewise the clause with the semantics of its elements: "7.4.2.1.1" of seq_parameter_set_data.
ORV_UTILS_V4_EXPORT const char* semantics_of(const char* structure) noexcept;

} // namespace orv_utils_v4::h264
