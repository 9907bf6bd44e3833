#include "data_set.h"

#include "literal_loops.h"

#include "support/pps_builder.h"
#include "support/slice_header_builder.h"
#include "support/sps_builder.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <stdexcept>

namespace bench {

namespace {

using bytes = std::vector<unsigned char>;
using random_bits = std::mt19937_64;

/// What the units of a data set are like.
struct recipe {
    const char* name;
    std::size_t unit_size; ///< of a slice's payload
    unsigned int slices_a_picture;
    std::function<void(unsigned char*, std::size_t, random_bits&)> fill;
    bool is_stream = true; ///< delimiters, parameter sets and slice headers; else nothing but what fill() makes
    std::size_t parts = 1; ///< of the size asked for, one is made
};

void fill_random(unsigned char* p, std::size_t size, random_bits& random)
{
    for (std::size_t i = 0; i < size; i += 8) {
        const std::uint64_t bits = random();
        for (std::size_t j = i; j < std::min(i + 8, size); ++j)
            p[j] = static_cast<unsigned char>(bits >> 8 * (j - i) & 0xFF);
    }
}

void fill_zeros(unsigned char* p, std::size_t size, random_bits& random)
{
    static_cast<void>(random);
    std::fill_n(p, size, static_cast<unsigned char>(0));
}

void fill_random_to_3(unsigned char* p, std::size_t size, random_bits& random)
{
    fill_random(p, size, random);
    std::transform(p, p + size, p, [](unsigned char byte) { return static_cast<unsigned char>(byte & 3); });
}

void fill_with_00_01_04(unsigned char* p, std::size_t size, random_bits& random)
{
    static constexpr unsigned char pattern[] = {0, 1, 4};
    static_cast<void>(random);
    for (std::size_t i = 0; i < size; ++i)
        p[i] = pattern[i % 3];
}

void fill_with_00_00_xx(unsigned char* p, std::size_t size, random_bits& random)
{
    fill_random(p, size, random);
    for (std::size_t i = 0; i < size; ++i)
        if (i % 3 != 2)
            p[i] = 0;
}

const std::vector<recipe>& recipes()
{
    constexpr std::size_t kib = 1024;
    static const std::vector<recipe> all = {
        {"large", 1024 * kib, 1, fill_random},
        {"8k", 8 * kib, 4, fill_random},
        {"70", 69, 4, fill_random},
        {"5", 4, 1, fill_random, false, 10},
        {"zeros", 1024 * kib, 1, fill_zeros},
        {"0to3", 1024 * kib, 1, fill_random_to_3},
        {"000104", 1024 * kib, 1, fill_with_00_01_04},
        {"0000xx", 1024 * kib, 1, fill_with_00_00_xx},
    };
    return all;
}

constexpr unsigned int frame_num_width = 8;
constexpr unsigned int pic_order_cnt_lsb_width = 8;

/// Appends units to a data set that is being made.
class maker {
public:
    maker(data_set& made, const recipe& r) : set(made), how(r)
    {
        for (unsigned int picture = 0; picture < pictures_a_second; ++picture)
            for (unsigned int i = 0; i < 4; ++i)
                headers.push_back(header_of(picture, i));
    }

    void make(std::size_t size)
    {
        set.name = how.name;
        set.is_stream = how.is_stream;
        for (unsigned int picture = 0; set.payloads.size() < size; ++picture)
            put_picture(picture);
        frame();
    }

private:
    static constexpr unsigned int pictures_a_second = 50;

    void put(unsigned char header, const bytes& payload, bool begins_picture)
    {
        set.units.push_back({set.payloads.size(), payload.size(), header, begins_picture});
        set.payloads.insert(set.payloads.end(), payload.begin(), payload.end());
    }

    void put_picture(unsigned int picture)
    {
        if (!how.is_stream) {
            put(0x41, slice({}, how.unit_size), true);
            return;
        }
        put(0x09, {0xF0}, true);
        const bool is_idr = picture % pictures_a_second == 0;
        if (is_idr)
            put_parameter_sets();
        for (unsigned int i = 0; i < how.slices_a_picture; ++i)
            put(is_idr ? 0x65 : 0x41, slice(headers[picture % pictures_a_second * 4 + i], how.unit_size), false);
    }

    void put_parameter_sets()
    {
        support::sps_description sps;
        sps.level_idc = 51;
        sps.log2_max_frame_num_minus4 = frame_num_width - 4;
        sps.pic_order_cnt_type = 0;
        sps.log2_max_pic_order_cnt_lsb_minus4 = pic_order_cnt_lsb_width - 4;
        sps.pic_width_in_mbs_minus1 = 119;
        sps.pic_height_in_map_units_minus1 = 67;
        put(0x67, support::written_rbsp(sps).made(), false);
        put(0x68, support::written_rbsp(support::pps_description{}).made(), false);
    }

    /// A whole slice_header(), whose last elements no description has: dec_ref_pic_marking() and slice_qp_delta.
    static bytes header_of(unsigned int picture, unsigned int slice_of_picture)
    {
        support::slice_header_description header;
        header.first_mb_in_slice = slice_of_picture * 2040;
        header.frame_num_width = frame_num_width;
        header.frame_num = picture;
        header.slice_type = 5;
        if (picture == 0) {
            header.slice_type = 7;
            header.idr_pic_id = 0;
        }
        header.pic_order_cnt_lsb_width = pic_order_cnt_lsb_width;
        header.pic_order_cnt_lsb = 2 * picture;
        support::element_writer out = support::written(header);
        out.u("no_marking", picture == 0 ? 2 : 1, 0);
        out.se("slice_qp_delta", 0);
        return out.made();
    }

    /// A payload of `size` bytes that begins with the header; it ends as every RBSP does, not in a zero.
    bytes slice(const bytes& header, std::size_t size)
    {
        bytes payload(size);
        how.fill(payload.data(), size, random);
        std::copy(header.begin(), header.end(), payload.begin());
        payload.back() = 0x80;
        return payload;
    }

    /// The units in both framings.
    void frame()
    {
        for (const unit_place& place : set.units) {
            if (place.begins_picture) {
                set.annex_b_pictures.push_back(set.annex_b.size());
                set.length4_pictures.push_back(set.length4.size());
            }
            append(set.annex_b, place, brenik::nalfmt_annexb);
            append(set.length4, place, brenik::nalfmt_length4);
        }
        finish(set.annex_b, set.annex_b_size, set.annex_b_pictures);
        finish(set.length4, set.length4_size, set.length4_pictures);
    }

    void append(bytes& stream, const unit_place& place, brenik::h2645_common_nalfmt nalfmt)
    {
        room.resize(2 * place.size + 64);
        brenik::h264_nal nal;
        nal.decode_header(place.header);
        brenik::h264_nal_writer writer(room.data(), room.data(), room.data() + room.size(), nalfmt);
        literal::block_encode(writer, set.payloads.data() + place.offset, place.size, nal, 0);
        stream.insert(stream.end(), room.data(), writer.write);
        set.largest_unit = std::max(set.largest_unit, writer.data_length());
    }

    static void finish(bytes& stream, std::size_t& size, std::vector<std::size_t>& pictures)
    {
        size = stream.size();
        pictures.push_back(size);
        stream.resize(size + data_set::padding);
    }

    data_set& set;
    const recipe& how;
    random_bits random{264};
    bytes room;
    std::vector<bytes> headers; // of the slices of a second, 4 a picture
};

} // namespace

const std::vector<std::string>& data_set_names()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made;
        for (const recipe& r : recipes())
            made.emplace_back(r.name);
        return made;
    }();
    return names;
}

data_set& data_set_named(const std::string& name, std::size_t megabytes)
{
    static std::map<std::pair<std::string, std::size_t>, data_set> made;
    const auto [at, is_new] = made.try_emplace({name, megabytes});
    if (!is_new)
        return at->second;
    const auto how = std::find_if(recipes().begin(), recipes().end(), [&](const recipe& r) { return r.name == name; });
    if (how == recipes().end())
        throw std::invalid_argument("no data set " + name);
    maker(at->second, *how).make(megabytes * 1000 * 1000 / how->parts);
    return at->second;
}

bool write_stream(const std::string& name, std::size_t megabytes, const std::string& file)
{
    constexpr std::size_t most_kept = 50;
    const data_set& set = data_set_named(name, std::min(megabytes, most_kept));
    std::ofstream out(file, std::ios::binary);
    const std::size_t size = megabytes * 1000 * 1000;
    for (std::size_t written = 0; written < size && out;) {
        // up to a picture
        const auto end = std::lower_bound(set.annex_b_pictures.begin(), set.annex_b_pictures.end() - 1, size - written);
        out.write(reinterpret_cast<const char*>(set.annex_b.data()), static_cast<std::streamsize>(*end));
        written += *end;
    }
    out.close();
    return !out.fail();
}

} // namespace bench
