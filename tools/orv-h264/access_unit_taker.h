// Gives access units to a function, for a class whose own take() is another.
#pragma once

#include <orv-utils-v4/h264_syntax/access_unit.h>

#include <functional>
#include <utility>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

class access_unit_taker final : public h264::access_unit_sink {
public:
    explicit access_unit_taker(std::function<void(const h264::access_unit&)> to) : give(std::move(to)) {}

    void take(const h264::access_unit& unit) override { give(unit); }

private:
    std::function<void(const h264::access_unit&)> give;
};

} // namespace orv_h264
