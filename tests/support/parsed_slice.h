// A slice header after a parse of bytes that end at an unmapped page.
#pragma once

#include "support/parsed.h"
#include "support/slice_context.h"

namespace support {

struct parsed_slice : parsed<brenik::h264_nal_slice_header> {
    template <typename Written>
    parsed_slice(const Written& slice, const slice_context& context, const brenik::h264_nal_slice_header& before = {})
        : parsed(slice, before, context.sps_store(), context.pps_store(), context.nal)
    {
    }

    /// Parses what the description writes, in the context that agrees.
    explicit parsed_slice(const slice_header_description& slice, const brenik::h264_nal_slice_header& before = {})
        : parsed_slice(written(slice), context_of(slice), before)
    {
    }
};

} // namespace support
