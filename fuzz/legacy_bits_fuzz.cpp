// The legacy bit reader and its codes against a reader of single bits, up to a fence and open-ended with four bytes
// behind the data. Input: a byte that says how many operations follow, two bytes an operation, and the data.
#include "input.h"

#include "support/legacy_bits_walk.h"

namespace {

using support::legacy_bits_walk;

constexpr std::size_t longest_code = 48;
constexpr std::size_t read_ahead = 4;

std::string operate(legacy_bits_walk& walk, unsigned int operation, unsigned char argument, bool fenced)
{
    switch (operation) {
    case 0:
        return walk.read(argument);
    case 1:
        return fenced ? walk.fenced_ue() : walk.ue();
    case 2:
        return fenced ? walk.fenced_se() : walk.se();
    case 3:
        return walk.u32();
    case 4:
        return walk.at_end();
    default:
        return walk.read(static_cast<unsigned char>(1 + argument % 24));
    }
}

void operate_fenced(const fuzz::bytes& operations, const fuzz::bytes& content)
{
    const fuzz::exact_block block(content);
    legacy_bits_walk walk(block.begin(), block.size());
    fuzz::expect_none(walk.opened());
    for (std::size_t i = 0; i + 1 < operations.size(); i += 2)
        fuzz::expect_none(operate(walk, operations[i] % 6, operations[i + 1], true));
}

/// As long as an operation stays within the data, whatever it reads.
void operate_open(const fuzz::bytes& operations, const fuzz::bytes& content)
{
    fuzz::bytes longer = content;
    longer.resize(content.size() + read_ahead, 0xFF);
    const fuzz::exact_block block(longer);
    legacy_bits_walk walk(block.begin(), block.size(), legacy_bits_walk::end::open);
    fuzz::expect_none(walk.opened());
    for (std::size_t i = 0; i + 1 < operations.size(); i += 2)
        if (walk.model.position + longest_code <= 8 * content.size())
            fuzz::expect_none(operate(walk, operations[i] % 6, operations[i + 1], false));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const fuzz::bytes operations = input.take(std::size_t{2} * (input.byte() % 64));
    const fuzz::bytes content = input.rest();
    operate_fenced(operations, content);
    operate_open(operations, content);
    return 0;
}
