// Sound units of every kind, made up over the texts, with the parameter sets that they stand on.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orv_utils_v4::h264 {

class generator;

/// Makes units; the same seed makes the same ones.
class unit_maker {
public:
    explicit unit_maker(std::uint64_t seed);
    ~unit_maker();
    unit_maker(const unit_maker&) = delete;
    unit_maker& operator=(const unit_maker&) = delete;

    /// New parameter sets, all with the id 0, which the units that follow stand on.
    void renew_sets();
    /// A unit of the type, which context() goes with.
    nal_unit make(unsigned nal_unit_type);
    /// An SEI unit whose first message has the payload type; with new parameter sets where it takes others.
    nal_unit make_sei(std::uint32_t payload_type);

    /// Elements of this name have this value from now on, where the ranges do not matter to the caller.
    void force(const std::string& name, std::int64_t value);

    const unit_context& context() const { return around; }

private:
    nal_unit make_once(unsigned nal_unit_type);

    std::unique_ptr<generator> random;
    parameter_sets sets;
    seq_parameter_set_rbsp sps;
    subset_seq_parameter_set_rbsp subset_sps;
    pic_parameter_set_rbsp pps;
    depth_parameter_set_rbsp dps;
    unit_context around;
};

/// The unit as write() puts it; empty when it is refused.
std::vector<unsigned char> written(const nal_unit& unit, const unit_context& context);

} // namespace orv_utils_v4::h264
