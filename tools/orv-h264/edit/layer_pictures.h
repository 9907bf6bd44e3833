// The pictures of a layer or view, each told from the one before by the headers of its slices.
#pragma once

#include "edit/picture_numbers.h"

#include <cstdint>
#include <memory>

namespace orv_h264::editing {

class layer_pictures {
public:
    /// The next slice as it was, to be called for every slice.
    void see(const numbered_slice& slice);

    /// How they are counted.
    picture_numbers numbers;

private:
    struct last_slice {
        h264::pic_parameter_set_rbsp pps;
        h264::seq_parameter_set_data sps;
        h264::slice_header header;
        unsigned nal_ref_idc;
        bool idr;
    };

    std::uint64_t picture = 0;
    std::unique_ptr<last_slice> last;
};

} // namespace orv_h264::editing
