// A mutator that knows the structures of the parse targets: half of the time it makes a valid input of the target's
// own, sets one syntax element of it to a value at a limit and may damage the bytes a little; else it does what
// libFuzzer does of itself. ORV_FUZZ_TARGET is the target's name. Linked into fuzzers alone, never into what replays
// their inputs.
#include "structure_samples.h"

#include "support/damage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

namespace {

using fuzz::sample;
using support::bytes;
using support::element;
using support::pick;
using support::random_source;

/// The sample, with one element of one of its structures set to another value.
bytes with_one_changed(const sample& from, random_source& random)
{
    const fuzz::part& changed = from[pick(random, from.size())];
    const std::vector<element>& elements = changed.structure.elements();
    const element& e = elements[pick(random, elements.size())];
    const std::vector<std::int64_t> limits = support::limits_of(e);
    const std::int64_t value = limits[pick(random, limits.size())];
    return with_replaced(from, changed, support::with_element(changed.structure, e, value));
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned int seed)
{
    static const std::vector<sample> samples = fuzz::samples_of(ORV_FUZZ_TARGET);
    static random_source random(seed); // once: it takes longer than most inputs do
    const std::size_t what = pick(random, 4);
    if (what < 2)
        return LLVMFuzzerMutate(data, size, max_size);
    const bytes made = with_one_changed(samples[pick(random, samples.size())], random);
    const std::size_t made_size = std::min(made.size(), max_size);
    std::memcpy(data, made.data(), made_size);
    return what == 2 ? made_size : LLVMFuzzerMutate(data, made_size, max_size);
}
