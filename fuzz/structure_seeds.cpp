// Seeds of the targets that parse structures: their samples as they are, cut, with a code that is too long, with an
// element or a byte before the structure at a limit.
#include "seeds.h"
#include "structure_samples.h"

namespace fuzz {

namespace {

/// Elements, in whatever structure, and the values that they get.
const std::map<std::string, std::vector<std::int64_t>> limits = {
    {"aspect_ratio_idc", {0, 1, 13, 16, 17, 254}},
    {"chroma_format_idc", {0, 1, 2, 4}},
    {"cpb_cnt_minus1", {31, 32, 127, 128, 4294967294}},
    {"delta_scale", {-8, 248, 2147483647}},
    {"frame_crop_left_offset", {4294967294}},
    {"frame_mbs_only_flag", {0}},
    {"full_timestamp_flag", {0}},
    {"log2_max_frame_num_minus4", {21, 28, 4294967294}},
    {"modification_of_pic_nums_idc", {3, 4, 8388607, 16777215}},
    {"num_ref_frames_in_pic_order_cnt_cycle", {128, 129, 16777215, 4294967294}},
    {"num_slice_groups_minus1", {0, 1, 3, 7, 16, 127, 128, 33554431, 4294967294}},
    {"pan_scan_cnt_minus1", {127, 128, 4294967294}},
    {"pan_scan_rect_cancel_flag", {1}},
    {"pic_order_cnt_type", {2, 5, 256}},
    {"pic_size_in_map_units_minus1", {127, 128, 4294967294}},
    {"pic_struct", {0, 1, 2, 3, 4, 6, 7, 8, 9, 15}},
    {"profile_idc", {44, 83, 86, 100, 110, 118, 122, 128, 134, 135, 138, 139, 244}},
    {"recovery_frame_cnt", {4294967294}},
    {"seq_parameter_set_id", {1, 9, 16777215, 4294967294}},
    {"slice_group_map_type", {7}},
    {"slice_type", {0, 2, 3, 4, 9, 4294967294}},
    {"time_scale", {0}},
};

/// Of elements of one name the first has the seeds; of codes the last is the one that is too long.
void add_sample(seeds& to, const std::string& name, const sample& from)
{
    const element_writer& structure = from.back().structure;
    const auto with = [&](const bytes& data) { return with_replaced(from, from.back(), data); };
    to[name] = with(structure.made());
    to[name + "_cut"] = with(support::first_bits(structure.made(), structure.size_in_bits() / 2));
    for (const support::element& e : structure.elements()) {
        if (e.how != support::descriptor::u)
            to[name + "_malformed"] = with(support::with_malformed_code(structure, e));
        const auto found = limits.find(e.name.substr(e.name.rfind('.') + 1));
        if (found != limits.end() && from.size() == 1)
            for (const std::int64_t value : found->second)
                to.try_emplace(e.name + "_" + std::to_string(value), with(support::with_element(structure, e, value)));
    }
}

} // namespace

void add_structure_seeds(seed_table& to)
{
    for (const auto& [target, make_samples] : sample_makers()) {
        const std::vector<sample> samples = make_samples();
        for (std::size_t i = 0; i < samples.size(); ++i)
            add_sample(to[target], "sample_" + std::to_string(i), samples[i]);
        const bytes first = to[target]["sample_0"];
        const auto rest = first.begin() + static_cast<std::ptrdiff_t>(samples[0][0].before.size());
        add_heads(to[target], "sample_0", samples[0][0].before, {rest, first.end()});
    }
}

} // namespace fuzz
