// A mutator that knows the structures of the parse targets: half of the time it makes a valid input of the target's
// own, sets one syntax element of it to a value at a limit and may damage the bytes a little; else it does what
// libFuzzer does of itself. ORV_FUZZ_TARGET is the target's name. Linked into fuzzers alone, never into what replays
// their inputs.
#include "structure_samples.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

namespace {

using fuzz::sample;
using support::bytes;
using support::element;
using support::element_writer;
using random_source = std::minstd_rand;

std::size_t pick(random_source& random, std::size_t fence)
{
    return std::uniform_int_distribution<std::size_t>(0, fence - 1)(random);
}

/// A value at a limit that the element can be set to.
std::int64_t limit_of(const element& e, random_source& random)
{
    static const std::vector<std::int64_t> limits = {
        0,        1,        2,        3,        4,        5,          6,          7,          8,         9,
        15,       16,       31,       32,       33,       63,         64,         65,         127,       128,
        129,      255,      256,      257,      16383,    65535,      65536,      8388606,    8388607,   8388608,
        16777214, 16777215, 16777216, 33554430, 33554431, 2147483646, 2147483647, 2147483648, 4294967294};
    const std::int64_t value = limits[pick(random, limits.size())];
    if (e.how == support::descriptor::ue)
        return value;
    if (e.how == support::descriptor::se)
        return std::min<std::int64_t>(value, 2147483647) * (pick(random, 2) == 0 ? 1 : -1);
    const std::int64_t fence = e.width < 33 ? std::int64_t{1} << e.width : std::int64_t{1} << 33;
    return pick(random, 2) == 0 ? fence - 1 - value % fence : value % fence;
}

/// The sample, with one element of one of its structures set to another value.
bytes with_one_changed(const sample& from, random_source& random)
{
    support::stream_builder made;
    const std::size_t changed = pick(random, from.size());
    for (std::size_t i = 0; i < from.size(); ++i) {
        const element_writer& structure = from[i].structure;
        bytes data = structure.made();
        if (i == changed) {
            const element& e = structure.elements()[pick(random, structure.elements().size())];
            data = support::with_element(structure, e, limit_of(e, random));
        }
        if (from[i].length_size == 1 && data.size() > 255)
            data.resize(255);
        made.raw(from[i].before).prefix(from[i].length_size, static_cast<std::uint32_t>(data.size()));
        made.raw(data).raw(from[i].behind);
    }
    return made;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned int seed)
{
    static const std::vector<sample> samples = fuzz::samples_of(ORV_FUZZ_TARGET);
    random_source random(seed);
    const std::size_t what = pick(random, 4);
    if (what < 2)
        return LLVMFuzzerMutate(data, size, max_size);
    const bytes made = with_one_changed(samples[pick(random, samples.size())], random);
    const std::size_t made_size = std::min(made.size(), max_size);
    std::memcpy(data, made.data(), made_size);
    return what == 2 ? made_size : LLVMFuzzerMutate(data, made_size, max_size);
}
