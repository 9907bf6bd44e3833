// ISO/IEC 11578: universally unique identifiers.
#include <orv-utils-v4/h2645_common/uuid.h>

#include <algorithm>
#include <iterator>

bool iso_iec_11578_uuid::operator==(const iso_iec_11578_uuid& other) const
{
    return std::equal(std::begin(bytes), std::end(bytes), std::begin(other.bytes));
}
