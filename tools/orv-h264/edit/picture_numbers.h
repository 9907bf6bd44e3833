// What frame_num and the elements of picture order counts of a stream stand for, so that slices can be written with
// parameter sets that count otherwise: log2_max_frame_num_minus4, pic_order_cnt_type,
// log2_max_pic_order_cnt_lsb_minus4 (H.264 clauses 7.4.3 and 8.2.1).
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A slice as these numbers see it.
struct numbered_slice {
    const h264::seq_parameter_set_data& sps;
    const h264::pic_parameter_set_rbsp& pps;
    const h264::slice_header& slice;
    unsigned nal_ref_idc = 0;
    bool idr = false; ///< IdrPicFlag
};

using modification_list =
    h264::bounded_list<h264::pic_num_modification, h264::ref_pic_list_modification::most_modifications>;

/// How far before the current picture each short-term reference of a list is that is put to the front, in PicNum: the
/// differences may go around MaxPicNum (8.2.4.3.1).
std::vector<std::uint64_t> distances_of(const modification_list& list, std::uint64_t max_pic_num);

/// The lists put the same references to the front.
bool name_the_same(const modification_list& before, const h264::seq_parameter_set_data& sps_before,
                   const modification_list& after, const h264::seq_parameter_set_data& sps_after, bool field);

/// The pictures of one layer or view, in decoding order, as they were and as they become.
class picture_numbers {
public:
    /// The next slice as it was, to be called for every slice.
    /// @param picture grows with each access unit
    void see(const numbered_slice& old, std::uint64_t picture);

    /// Gives the header what its frame_num and picture order count are under the new parameter sets.
    void renumber(h264::slice_header& header, const numbered_slice& old, const h264::pic_parameter_set_rbsp& new_pps,
                  const h264::seq_parameter_set_data& new_sps) const;

    /// The same slice as it has become, to be called for every slice.
    /// @return what it says otherwise than the old one; nothing when it says the same
    std::optional<std::string> compare(const numbered_slice& now);

private:
    /// Counts frames without end, from an IDR picture or operation 5 on (8.2.1.2: FrameNumOffset).
    struct frame_counter {
        std::uint64_t next(const numbered_slice& slice);

        std::uint64_t offset = 0;
        std::uint32_t previous = 0;
    };

    std::optional<std::uint64_t> current; // picture
    bool compared = false;                // its first slice
    frame_counter old_frames;
    frame_counter new_frames;
    h264::picture_order_counter old_orders;
    h264::picture_order_counter new_orders;
    std::uint64_t frame = 0; // of the current picture
    h264::picture_order_count order;
    std::uint64_t new_frame = 0;
    h264::picture_order_count new_order;
};

} // namespace orv_h264
