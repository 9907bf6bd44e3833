// A real parse of a parameter set beside the literal one, from the same fields over the same bits: the result, every
// field, the reader's position and the exception are compared.
#pragma once

#include "support/literal_parameter_sets.h"
#include "support/parameter_set_fields.h"

#include <cstddef>
#include <new>
#include <string>

namespace support {

/// How a parse ended.
struct parse_end {
    bool threw = false;
    std::size_t code_start = 0; ///< where the malformed code begins
    bool result = false;
    std::size_t position = 0; ///< bits consumed
    bool out_of_memory = false;

    bool operator==(const parse_end&) const = default;
};

inline std::string to_text(const parse_end& end)
{
    const std::string how = end.out_of_memory ? "runs out of memory"
                            : end.threw       ? "throws for bit " + std::to_string(end.code_start)
                            : end.result      ? "gives true"
                                              : "gives false";
    return how + " at bit " + std::to_string(end.position);
}

/// Some bytes, the bit in them where a structure begins.
struct bit_range {
    const unsigned char* start;
    const unsigned char* fence;
    unsigned char first_bit = 0;
};

/// When set, told that a real parse begins, and that it ended: only between the two may allocations fail.
inline void (*on_real_parse)(bool begins) = nullptr;

class real_parse_scope {
public:
    real_parse_scope() { tell(true); }
    real_parse_scope(const real_parse_scope&) = delete;
    real_parse_scope& operator=(const real_parse_scope&) = delete;
    ~real_parse_scope() { tell(false); }

private:
    static void tell(bool begins)
    {
        if (on_real_parse != nullptr)
            on_real_parse(begins);
    }
};

template <typename Structure, typename Parse>
parse_end real_parse(Structure& object, const bit_range& bits, Parse parse)
{
    brenik::h2645_common_bitreader br(bits.start, bits.fence);
    br.get_wide(bits.first_bit);
    parse_end end;
    try {
        const real_parse_scope scope;
        end.result = parse(object, br);
    } catch (const brenik::h2645_common_malformed_code& malformed) {
        end.threw = true;
        end.code_start = malformed.bit_position();
    } catch (const std::bad_alloc&) {
        end.out_of_memory = true;
    }
    end.position = br.bits_consumed();
    return end;
}

template <typename Parse>
parse_end literal_parse(named_values& fields, const bit_range& bits, Parse parse)
{
    literal::bit_reader reader{{bits.start, bits.fence}};
    reader.get(bits.first_bit);
    parse_end end;
    try {
        end.result = parse(literal::structure{fields, reader});
    } catch (const literal::malformed_code& malformed) {
        end.threw = true;
        end.code_start = malformed.bit_position;
    } catch (const literal::out_of_memory&) {
        end.out_of_memory = true;
    }
    end.position = reader.position;
    return end;
}

/// A parse of both kinds, of one structure.
struct compared {
    parse_end end;       ///< of the real parse
    named_values before; ///< the object's fields
    named_values after;
    std::string difference; ///< "" when both parses did the same
};

/// Parses into `object` with `real(object, reader)` and beside it with `model(literal structure)`.
template <typename Structure, typename Real, typename Model>
compared compare_parses(Structure& object, const bit_range& bits, Real real, Model model)
{
    const named_values before = fields_of(object);
    named_values expected = before;
    const parse_end expected_end = literal_parse(expected, bits, model);
    const parse_end end = real_parse(object, bits, real);
    // The exception of a malformed code needs memory too.
    const bool same_end = end == expected_end || (end.out_of_memory && expected_end.threw);
    named_values after = fields_of(object);
    std::string text = same_end ? "" : to_text(end) + ", where " + to_text(expected_end) + " is right; ";
    text += difference(expected, after);
    return {end, before, std::move(after), std::move(text)};
}

/// The parse of each structure, both kinds. A parse may need more than the bits.
struct scaling_list_parses {
    using structure = brenik::h264_scaling_list;
    unsigned int size = 16;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_parses(
            object, bits, [this](structure& list, brenik::h2645_common_bitreader& br) { return list.parse(br, size); },
            [this](const literal::structure& s) { return literal::scaling_list(s, size); });
    }
};

struct hrd_parses {
    using structure = brenik::h264_hrd_parameters;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_parses(
            object, bits, [](structure& hrd, brenik::h2645_common_bitreader& br) { return hrd.parse(br); },
            literal::hrd_parameters);
    }
};

struct vui_parses {
    using structure = brenik::h264_vui_parameters;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_parses(
            object, bits, [](structure& vui, brenik::h2645_common_bitreader& br) { return vui.parse(br); },
            literal::vui_parameters);
    }
};

struct sps_parses {
    using structure = brenik::h264_nal_sps;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_parses(
            object, bits, [](structure& seq, brenik::h2645_common_bitreader& br) { return seq.parse(br); },
            literal::nal_sps);
    }
};

struct pps_parses {
    using structure = brenik::h264_nal_pps;
    literal::sps_store stored = {{0, {true, 1}}};

    compared operator()(structure& object, const bit_range& bits) const
    {
        brenik::h2645_common_base_store<brenik::h264_nal_sps> store;
        for (const auto& [id, seq] : stored) {
            brenik::h264_nal_sps real;
            real.valid = seq.valid;
            real.chroma_format_idc = static_cast<std::uint32_t>(seq.chroma_format_idc);
            store.insert_or_assign(static_cast<std::uint32_t>(id), real);
        }
        return compare_parses(
            object, bits, [&store](structure& pic, brenik::h2645_common_bitreader& br) { return pic.parse(br, store); },
            [this](const literal::structure& s) { return literal::nal_pps(s, stored); });
    }
};

/// The most entries of any array.
inline std::size_t largest_array(const named_values& fields)
{
    std::size_t largest = 0;
    for (const value& field : fields.values)
        largest = field.entries.size() > largest ? field.entries.size() : largest;
    return largest;
}

/// What does not hold of a parse that holds of every one; "" when all does. `most_entries` is for the arrays.
inline std::string fault_of(const compared& c, std::size_t most_entries)
{
    if (!c.difference.empty())
        return c.difference;
    if (largest_array(c.after) > most_entries)
        return "an array has " + std::to_string(largest_array(c.after)) + " entries";
    if (!c.before.names->contain("valid"))
        return "";
    const bool was_valid = c.before.at("valid").number == 1;
    const bool is_valid = c.after.at("valid").number == 1;
    if (c.end.threw || c.end.out_of_memory ? is_valid != was_valid : c.end.result ? !is_valid : is_valid && !was_valid)
        return "`valid` is " + std::to_string(is_valid) + ", the result " + std::to_string(c.end.result);
    return "";
}

/// The most entries that an array may have after a parse: the library's limit, or what `Parses` says.
template <typename Parses>
constexpr std::size_t most_entries()
{
    if constexpr (requires { Parses::most_entries; })
        return Parses::most_entries;
    return 128;
}

} // namespace support
