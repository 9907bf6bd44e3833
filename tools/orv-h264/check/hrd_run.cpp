#include "check/hrd_run.h"

namespace orv_h264 {

void hrd_run::take(const listed_unit& unit, const h264::unit_reading*)
{
    sizes.add(unit);
    units.push(unit.place, to_model);
}

void hrd_run::add(const h264::access_unit& unit)
{
    constexpr unsigned end_of_stream = 11;
    const access_unit_bits bits = sizes.take(unit);
    if (unit.header == nullptr)
        return;
    model.take(unit, sei_list(unit), bits, unit.parts.front().place.offset);
    ++pictures;
    without_times += model.running() ? 0 : 1;
    if (unit.parts.back().header.nal_unit_type == end_of_stream)
        model.end();
}

void hrd_run::complain(const listed_unit* unit, std::uint64_t offset, const std::string& what, bool is_problem)
{
    if (tells && is_problem)
        unit_run::complain(unit, offset, what, is_problem);
}

void hrd_run::finish()
{
    units.flush(to_model);
    model.end();
}

} // namespace orv_h264
