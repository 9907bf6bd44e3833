// profile_idc of the profiles that rules speak of (H.264 A.2).
#pragma once

namespace orv_h264 {

constexpr unsigned cavlc_444 = 44;
constexpr unsigned baseline = 66;
constexpr unsigned main_profile = 77;
constexpr unsigned extended = 88;
constexpr unsigned high = 100;
constexpr unsigned high_10 = 110;
constexpr unsigned high_422 = 122;
constexpr unsigned high_444 = 244;

} // namespace orv_h264
