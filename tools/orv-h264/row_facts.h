// What an access unit adds to the row of its picture, and what is wrong with it.
#pragma once

#include "picture_rows.h"

#include <cstdint>
#include <string>

namespace orv_h264 {

/// The most layers or views of a row that are told.
constexpr std::size_t most_layers = 1024;

/// Takes over what the slices, the SEI messages and the parameter sets of the access unit say.
void add_facts(picture_row& row, const h264::access_unit& unit);

/// A unit of the access unit. A slice has its type where its header was read that far.
row_unit unit_of(const h264::access_unit_part& part);

/// Of a unit of `size` bytes with its framing those that fill only: all of filler data (type 12), the payloads of
/// filler payload messages (clauses 7.3.2.7 and D.1.5 of H.264).
std::uint64_t filler_of(const h264::access_unit_part& part, std::uint64_t size);

/// Findings in a clause each, but for those that the failures of the slices tell, and the limit.
std::vector<std::string> texts_of(h264::picture_findings findings);

/// Of a row that is cut, as text for a person.
std::string describe_cut(const picture_row& row);

} // namespace orv_h264
