// What others use, for the tasks that each of them has a call for.
#pragma once

#include "task.h"

namespace bench::peers {

std::vector<contender> gstreamer_split();
std::vector<contender> gstreamer_encode();
std::vector<contender> gstreamer_headers();
std::string gstreamer_version();

std::vector<contender> libav_decode();
std::vector<contender> libav_frames();
std::vector<contender> libav_to_length4();
std::vector<contender> libav_to_annex_b();
std::string libav_version();

} // namespace bench::peers
