#include "support/unit_maker.h"

#include "support/generator.h"
#include "texts/nal_unit.h"

#include <stdexcept>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::uint32_t dps_id = 1;

} // namespace

unit_maker::unit_maker(std::uint64_t seed) : random(std::make_unique<generator>(seed))
{
    for (const char* id : {"seq_parameter_set_id", "pic_parameter_set_id"})
        random->force(id, 0);
    random->force("depth_parameter_set_id", dps_id);
    // small pictures: some tables have an entry for each macroblock
    random->cap("pic_width_in_mbs_minus1", 12);
    random->cap("pic_height_in_map_units_minus1", 12);
    random->cap("pic_size_in_map_units_minus1", 400);
    renew_sets();
}

unit_maker::~unit_maker() = default;

void unit_maker::renew_sets()
{
    sps = std::get<seq_parameter_set_rbsp>(make(7).rbsp);
    sets.sps[0] = &sps;
    subset_sps = std::get<subset_seq_parameter_set_rbsp>(make(15).rbsp);
    sets.subset_sps[0] = &subset_sps;
    around.sets = &sets;
    pps = std::get<pic_parameter_set_rbsp>(make(8).rbsp);
    sets.pps[0] = &pps;
    dps = std::get<depth_parameter_set_rbsp>(make(16).rbsp);
    sets.dps[dps_id] = &dps;
    around.active_sps = &sps.seq_parameter_set_data;
    around.active_pps = &pps;
    around.mvcd_sps = &subset_sps;
    around.primary_idr = random->coin();
    around.partition_a_pps = 0;
}

void unit_maker::force(const std::string& name, std::int64_t value)
{
    random->force(name, value);
}

nal_unit unit_maker::make(unsigned nal_unit_type)
{
    for (int tries = 0; tries < 2000; ++tries) {
        nal_unit unit = make_once(nal_unit_type);
        if (!random->failed())
            return unit;
        random->start_again();
    }
    throw std::runtime_error("no sound unit of type " + std::to_string(nal_unit_type) +
                             " could be made: " + random->why());
}

nal_unit unit_maker::make_once(unsigned nal_unit_type)
{
    nal_unit unit;
    random->force("nal_unit_type", nal_unit_type);
    if (nal_unit_type == 7 || nal_unit_type == 15) {
        constexpr int base[] = {44, 66, 77, 88, 100, 110, 122, 244};
        constexpr int subset[] = {83, 86, 118, 128, 134, 135, 138, 139, 100};
        const int profile_idc = nal_unit_type == 7 ? base[random->draw(7)] : subset[random->draw(8)];
        random->force("profile_idc", profile_idc);
    }
    code(*random, unit, around);
    random->free("profile_idc");
    return unit;
}

nal_unit unit_maker::make_sei(std::uint32_t payload_type)
{
    for (int tries = 0; tries < 10000; ++tries) {
        random->force("last_payload_type_byte", payload_type);
        nal_unit unit = make_once(6);
        if (!random->failed())
            return unit;
        random->start_again();
        if (tries % 50 == 49) // the sets may be of no use to it
            renew_sets();
    }
    throw std::runtime_error("no sound message of type " + std::to_string(payload_type) + " could be made");
}

std::vector<unsigned char> written(const nal_unit& unit, const unit_context& context)
{
    outcome result;
    bit_writer counted;
    write(unit, context, counted, result);
    std::vector<unsigned char> bytes(counted.bytes());
    bit_writer bits(bytes.data(), bytes.size());
    if (!write(unit, context, bits, result))
        bytes.clear();
    return bytes;
}

} // namespace orv_utils_v4::h264
