#include "edit/proof_unit.h"

#include <algorithm>
#include <utility>

namespace orv_h264::editing {

namespace {

/// The last one bit, counted from 1; 0 where there is none.
std::uint64_t behind_last_one(const std::vector<unsigned char>& bytes)
{
    std::size_t size = bytes.size();
    while (size > 0 && bytes[size - 1] == 0)
        --size;
    if (size == 0)
        return 0;
    unsigned zeros = 0;
    while ((bytes[size - 1] >> zeros & 1U) == 0)
        ++zeros;
    return std::uint64_t{8} * size - zeros;
}

/// Eight bits from any place on; those behind the end are 0.
unsigned bits_at(const std::vector<unsigned char>& bytes, std::uint64_t bit)
{
    const auto i = static_cast<std::size_t>(bit / 8);
    const unsigned first = i < bytes.size() ? bytes[i] : 0U;
    const unsigned second = i + 1 < bytes.size() ? bytes[i + 1] : 0U;
    return (first << 8U | second) >> (8 - bit % 8) & 0xFFU;
}

/// Whole zero bytes at the end: cabac_zero_words.
std::size_t zeros_at_end(const std::vector<unsigned char>& bytes)
{
    return static_cast<std::size_t>(
        std::find_if(bytes.rbegin(), bytes.rend(), [](unsigned char byte) { return byte != 0; }) - bytes.rbegin());
}

} // namespace

bool same_data(const std::vector<unsigned char>& before, std::uint64_t before_bit,
               const std::vector<unsigned char>& after, std::uint64_t after_bit)
{
    const std::uint64_t before_end = behind_last_one(before);
    const std::uint64_t after_end = behind_last_one(after);
    if (before_end < before_bit || after_end < after_bit || before_end - before_bit != after_end - after_bit ||
        zeros_at_end(before) != zeros_at_end(after))
        return false;
    for (std::uint64_t i = 0; i < before_end - before_bit; i += 8)
        if (bits_at(before, before_bit + i) != bits_at(after, after_bit + i))
            return false;
    return true;
}

void proof_unit::take(const h264::unit_reading& reading)
{
    unit = reading.unit;
    result = reading.result;
    primary_idr = reading.context.primary_idr;
    elements.check();
    if (is_slice() && reading.pps != nullptr && reading.sps != nullptr)
        sets = std::make_unique<slice_sets>(slice_sets{*reading.pps, *reading.sps});
}

output_reader::output_reader(const std::string& path, h264::framing framing, std::uint64_t max_unit,
                             const edit_log& log, path_table& table)
    : file(path, "the output, read back"),
      splitter(framing, static_cast<std::size_t>(max_unit)),
      done(log),
      paths(table)
{
}

std::unique_ptr<proof_unit> output_reader::next()
{
    while (ready.empty()) {
        if (split.empty() && !read_more()) {
            stream.flush(*this);
            break;
        }
        if (split.empty())
            continue;
        pushed.push_back(std::move(split.front()));
        split.pop_front();
        const std::vector<unsigned char>& bytes = pushed.back().bytes;
        stream.push({bytes.data(), bytes.size(), 0, 0}, *this);
        if (failed)
            std::rethrow_exception(failed);
    }
    if (failed)
        std::rethrow_exception(failed);
    if (ready.empty())
        return nullptr;
    std::unique_ptr<proof_unit> result = std::move(ready.front());
    ready.pop_front();
    return result;
}

bool output_reader::read_more()
{
    if (ended)
        return false;
    const std::size_t count = file.read(block.data(), block.size());
    ended = count == 0;
    if (ended)
        splitter.flush(*this);
    else
        splitter.push(block.data(), count, *this);
    return true;
}

void output_reader::unit(const h264::split_unit& u)
{
    const std::uint64_t begin = u.offset - u.framing_size;
    split.push_back({{u.bytes, u.bytes + u.size}, u.framing_size, begin - passed});
    passed = u.offset + u.size;
}

void output_reader::gap(const h264::split_gap& g)
{
    ++gap_bytes.count;
    gap_bytes.bytes += g.size;
}

h264::visitor* output_reader::before(const h264::unit_place&)
{
    try {
        reading_now = std::make_unique<proof_unit>(paths);
        if (wanted_for_next() == kept_elements::list)
            return &reading_now->elements;
        return &reading_now->digest;
    } catch (...) {
        failed = std::current_exception();
        return nullptr;
    }
}

/// The log tells what becomes of the units of the output in their order.
kept_elements output_reader::wanted_for_next()
{
    while (log_index < done.size() && done.at(log_index) == unit_fate::deleted)
        ++log_index;
    if (log_index >= done.size())
        return kept_elements::digest;
    return done.at(log_index++) == unit_fate::copied ? kept_elements::digest : kept_elements::list;
}

void output_reader::take(const h264::unit_reading& reading)
{
    try {
        if (failed)
            return;
        framed_unit from = std::move(pushed.front());
        pushed.pop_front();
        reading_now->bytes = std::move(from.bytes);
        reading_now->framing_size = from.framing_size;
        reading_now->zeros = from.zeros;
        reading_now->take(reading);
        ready.push_back(std::move(reading_now));
    } catch (...) {
        failed = std::current_exception();
    }
}

} // namespace orv_h264::editing
