// Bad inputs for the parses of structures: short bodies, cut and flipped bits, elements out of range, pairs of bytes
// replaced, and memory that runs out.
#include "input_class.h"
#include "read_only_input.h"
#include "subject.h"

#include <algorithm>
#include <cstddef>

namespace robustness {

namespace {

using support::bytes;

/// Checks the bytes as the subject.
void check(input_class& inputs, const subject& what, object_state state, const bytes& data)
{
    static read_only_input memory;
    inputs.input(what.name, [&] {
        const unsigned char* const start = memory.put(data);
        return what.check({start, memory.end()}, state);
    });
}

/// A value that the standard or the library sets as the last one in range.
struct limit {
    const char* element;
    std::int64_t last;
};

constexpr limit limits[] = {
    {"seq_parameter_set_id", 31},
    {"pic_parameter_set_id", 255},
    {"chroma_format_idc", 3},
    {"bit_depth_luma_minus8", 6},
    {"bit_depth_chroma_minus8", 6},
    {"log2_max_frame_num_minus4", 12},
    {"pic_order_cnt_type", 2},
    {"log2_max_pic_order_cnt_lsb_minus4", 12},
    {"num_ref_frames_in_pic_order_cnt_cycle", 255},
    {"max_num_ref_frames", 16},
    {"cpb_cnt_minus1", 31},
    {"chroma_sample_loc_type_top_field", 5},
    {"max_dec_frame_buffering", 16},
    {"num_slice_groups_minus1", 7},
    {"slice_group_map_type", 6},
    {"num_ref_idx_l0_default_active_minus1", 31},
    {"slice_type", 9},
    {"idr_pic_id", 65535},
    {"redundant_pic_cnt", 127},
    {"num_ref_idx_l0_active_minus1", 31},
    {"modification_of_pic_nums_idc", 3},
    {"pan_scan_cnt_minus1", 2},
    {"recovery_frame_cnt", 65535},
};

/// The numbers that an element's code is set to: of a signed one, those of the codes. 127 is the last count less one
/// that the library takes.
std::vector<std::int64_t> values_for(const support::element& e)
{
    std::vector<std::int64_t> values = {0,          1,          126,       127,           128,           129,
                                        65535,      1 << 16,    1 << 24,   (1 << 24) - 1, (1 << 25) - 2, 2147483647,
                                        2147483648, 4294967293, 4294967294};
    for (const limit& l : limits)
        if (e.name.ends_with(l.element))
            values.insert(values.end(), {l.last - 1, l.last, l.last + 1});
    if (e.how == support::descriptor::u) {
        const std::int64_t fence = std::int64_t{1} << std::min<std::size_t>(e.width, 33);
        values.insert(values.end(), {fence / 2 - 1, fence / 2, fence - 2, fence - 1});
        std::erase_if(values, [fence](std::int64_t value) { return value < 0 || value >= fence; });
    }
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

/// Calls `use` with every structure of the subject in which one element is set to one of its values.
template <typename Use>
void each_element_set(const subject& what, Use use)
{
    for (support::element e : what.valid.elements()) {
        const std::vector<std::int64_t> values = values_for(e);
        if (e.how == support::descriptor::se)
            e.how = support::descriptor::ue; // the number of the code
        for (const std::int64_t value : values)
            use(with_element(what.valid, e, value));
    }
}

/// One structure is an input for each allocation that its parse asks for.
void check_without_memory(input_class& inputs, const subject& what, const bytes& data)
{
    static read_only_input memory;
    for (const object_state state : object_states)
        inputs.input(what.name, [&] {
            const unsigned char* const start = memory.put(data);
            std::size_t k = 0;
            for (bool out_of_memory = true; out_of_memory; ++k) {
                const parse_without_memory parse = what.check_without_memory({start, memory.end()}, state, k);
                if (!parse.fault.empty())
                    return "allocation " + std::to_string(k) + ": " + parse.fault;
                out_of_memory = parse.requests > k;
            }
            inputs.also_ran(k - 1);
            return std::string();
        });
}

} // namespace

/// All bodies of no byte, one and two.
void run_bodies(input_class& inputs)
{
    for (const subject& what : all_subjects())
        for (const object_state state : object_states) {
            check(inputs, what, state, {});
            for (unsigned int first = 0; first < 256; ++first) {
                check(inputs, what, state, {static_cast<unsigned char>(first)});
                for (unsigned int second = 0; second < 256; ++second)
                    check(inputs, what, state, {static_cast<unsigned char>(first), static_cast<unsigned char>(second)});
            }
        }
}

void run_truncations(input_class& inputs)
{
    for (const subject& what : all_subjects())
        for (const object_state state : object_states)
            for (std::size_t length = 0; length < what.valid.size_in_bits(); ++length)
                check(inputs, what, state, support::first_bits(what.valid.made(), length));
}

void run_flips(input_class& inputs)
{
    for (const subject& what : all_subjects())
        for (const object_state state : object_states)
            for (std::size_t i = 0; i < what.valid.size_in_bits(); ++i) {
                bytes flipped = what.valid.made();
                flipped[i / 8] = static_cast<unsigned char>(flipped[i / 8] ^ 0x80U >> i % 8);
                check(inputs, what, state, flipped);
            }
}

void run_elements(input_class& inputs)
{
    for (const subject& what : all_subjects())
        for (const object_state state : object_states)
            each_element_set(what, [&](const bytes& data) { check(inputs, what, state, data); });
}

/// Every two neighbouring bytes of the structures that are not long, at all their values.
void run_windows(input_class& inputs)
{
    constexpr std::size_t long_structure = 80;
    for (const subject& what : all_subjects()) {
        bytes data = what.valid.made();
        for (std::size_t i = 0; i + 1 < data.size() && data.size() < long_structure; ++i) {
            for (unsigned int value = 0; value < 65536; ++value) {
                data[i] = static_cast<unsigned char>(value / 256);
                data[i + 1] = static_cast<unsigned char>(value % 256);
                check(inputs, what, object_states[value % 3], data);
            }
            std::copy_n(what.valid.made().begin() + static_cast<std::ptrdiff_t>(i), 2,
                        data.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

void run_allocations(input_class& inputs)
{
    for (const subject& what : all_subjects()) {
        check_without_memory(inputs, what, what.valid.made());
        each_element_set(what, [&](const bytes& data) { check_without_memory(inputs, what, data); });
    }
}

} // namespace robustness
