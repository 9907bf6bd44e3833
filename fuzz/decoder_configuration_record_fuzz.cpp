// The AVC decoder configuration record against the literal parse. Input: the record, of which fewer than 1000 bytes
// are taken.
#include "input.h"

#include "support/compared_record.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::exact_block record = fuzz::input(data, size).block(support::unset_place - 1);
    fuzz::expect_none(support::difference_of_records(record.begin(), record.size()));
    return 0;
}
