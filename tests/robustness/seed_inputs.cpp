// Bad inputs for the fuzz entry points, which check what they do themselves: their seeds cut and flipped, and streams
// of two bytes behind what they need before them.
#include "entry_point.h"
#include "input_class.h"

#include "support/damage.h"

namespace robustness {

namespace {

using support::bytes;

/// A file of fuzz/seeds and the entry point that it is for.
struct seed {
    const entry_point* entry;
    bytes content;
};

/// Sorted by their paths, so that inputs have the same numbers everywhere.
std::vector<seed> all_seeds(const input_class& inputs)
{
    std::vector<seed> seeds;
    for (const std::filesystem::path& path : files_of(ORV_TEST_SEEDS)) {
        const entry_point* const entry = entry_named(path.parent_path().filename().string());
        if (entry != nullptr)
            seeds.push_back({entry, content_of(path)});
        else if (inputs.whole())
            inputs.fail("the entry point of this seed is not built in: " + path.string());
    }
    return seeds;
}

/// Runs the entry point over the data that `make` returns.
template <typename Make>
void run(input_class& inputs, const entry_point& entry, Make make)
{
    if (!inputs.next(entry.name))
        return;
    if (!run_over(entry, make()))
        inputs.fail("the input was changed");
}

/// What an entry point needs before two bytes of stream, and what follows them.
struct surroundings {
    const char* entry;
    std::vector<bytes> before;
    bytes behind = {};
};

/// The options of the entry points are told in their sources.
std::vector<surroundings> all_surroundings()
{
    constexpr unsigned char any_room = 255;
    std::vector<surroundings> all = {
        {"sei_reader", {{}, {5}, {255}}},
        {"legacy_sei", {{0, 0, 0}, {7, 4, 5}, {7, 24, 25}, {7, 4, 5, 1}}},
        {"sei_user_data_unreg", {bytes(17, 0xDC)}},
        {"nal_aud", {{0}, {3}}},
        {"decoder_configuration_record",
         {{}, {1}, {1, 66, 0, 30}, {1, 66, 0, 30, 255}, {1, 66, 0, 30, 255, 225}, {1, 66, 0, 30, 255, 224}}},
        {"bitreader", {{0}, {4, 4, 0, 5, 0, 4, 0, 6, 0}, {3, 1, 31, 4, 0, 7, 0}}},
        {"legacy_bits", {{0}, {1}, {2, 1, 5}}},
        {"pictures", {{0, 0, 3, 0, 0, 1}, {0, 1, 0, 0, 0, 1, 103}}},
        {"syntax_unit", {{0, 0, 0, 1}, {0, 0, 0, 1, 6}, {0, 0, 0, 1, 103}, {0, 0, 0, 1, 111}}},
        {"syntax_identity", {{0, 0, 0, 1}, {0, 0, 0, 1, 6}, {0, 0, 0, 1, 104}, {0, 0, 0, 1, 112}}},
    };
    for (unsigned char framing = 0; framing < 5; ++framing)
        all.push_back({"unit_splitter", {{framing, 3, 0}, {framing, 0, 1, 0, 0, 1, 9}, {framing, 1, 2, 2, 0, 0}}});
    for (unsigned char framing = 0; framing < 6; ++framing)
        all.push_back({"nal_reader",
                       {{framing, 7, 0},
                        {framing, 3, 1, 0},
                        {framing, 9, 0, 0, 0, 1, 103},
                        {framing, 2, 0, 0, 0},
                        {framing, 5, 0, 0, 0, 3},
                        {framing, 0, 1, 1, 0, 0, 1, 9},
                        {framing, 4, 2, 1, 3, 0, 0, 0, 1, 65}}});
    for (unsigned char prefix_size = 0; prefix_size < 5; ++prefix_size) {
        all.push_back({"legacy_nal_parser", {{prefix_size, 3, 0}, {prefix_size, 1, 9, 0, 0, 1, 103}}, {0, 0, 1, 9}});
        all.push_back({"legacy_frame_scan", {{prefix_size, 0, any_room}, {prefix_size, 1, any_room, 0, 0, 1}}});
        all.push_back({"legacy_nal_write", {{prefix_size, 103, 0}, {prefix_size, 103, 2, 0}}});
        all.push_back({"nal_writer", {{static_cast<unsigned char>(prefix_size + 1), 0, 3, 7, 1, 2}}});
    }
    return all;
}

} // namespace

void run_stream_bodies(input_class& inputs)
{
    for (const surroundings& around : all_surroundings()) {
        const entry_point* const entry = entry_named(around.entry);
        if (entry == nullptr)
            inputs.fail(std::string("no entry point is called ") + around.entry);
        for (const bytes& before : around.before)
            for (unsigned int value = 0; value < 65536; ++value)
                run(inputs, *entry, [&] {
                    bytes data = before;
                    data.push_back(static_cast<unsigned char>(value / 256));
                    data.push_back(static_cast<unsigned char>(value % 256));
                    data.insert(data.end(), around.behind.begin(), around.behind.end());
                    return data;
                });
    }
}

void run_seed_truncations(input_class& inputs)
{
    for (const seed& s : all_seeds(inputs))
        for (std::size_t bits = 0; bits <= 8 * s.content.size(); ++bits)
            run(inputs, *s.entry, [&] { return support::first_bits(s.content, bits); });
}

void run_seed_flips(input_class& inputs)
{
    for (const seed& s : all_seeds(inputs))
        for (std::size_t i = 0; i < 8 * s.content.size(); ++i)
            run(inputs, *s.entry, [&] { return support::with_flipped_bit(s.content, i); });
}

} // namespace robustness
