#include "report/number_column.h"

#include "report/base64.h"

namespace orv_h264 {

void number_column::add(std::uint64_t number)
{
    if (further && number == *last) {
        ++*further;
        return;
    }
    end_run();
    put(number);
    if (number == last)
        further = 0;
    last = number;
}

std::string number_column::text()
{
    end_run();
    return base64(bytes);
}

void number_column::end_run()
{
    if (further)
        put(*further);
    further.reset();
}

void number_column::put(std::uint64_t number)
{
    for (; number >= 128; number >>= 7U)
        bytes += static_cast<char>(number | 128U);
    bytes += static_cast<char>(number);
}

} // namespace orv_h264
