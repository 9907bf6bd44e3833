// What a container is, as text and JSON.
#pragma once

#include "container/container_check.h"
#include "container/container_stream.h"
#include "json_output.h"

#include <string>
#include <utility>
#include <vector>

namespace orv_h264 {

/// In one line: "MP4, track 1 of 2 (h264 video), offsets are those of the file".
std::string text_of(const container_stream& container);

/// Lines of a label and a text each, without the first line.
std::vector<std::pair<const char*, std::string>> lines_of(const container_stream& container,
                                                          const container_check& times);

json json_of(const container_stream& container);

/// The members that its packets add up to.
void add_totals(json& object, const container_check& times, container_ratio tick);

} // namespace orv_h264
