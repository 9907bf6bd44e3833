// Real streams read here and by one of the two exact interfaces; what departs is kept by name.
#pragma once

#include "support/stream_files.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace orv_utils_v4::h264 {

/// Hands each unit that was read to compare().
class exact_comparison : public split_sink, public unit_sink {
public:
    void of_stream(const support::bytes& content)
    {
        unit_splitter splitter(framing::annex_b);
        splitter.push(content.data(), content.size(), *this);
        splitter.flush(*this);
        reader.flush(*this);
    }

    void unit(const split_unit& u) override { reader.push({u.bytes, u.size, u.offset, 0}, *this); }
    void gap(const split_gap&) override {}
    void take(const unit_reading& reading) override
    {
        rbsp.assign(reading.place.size, 0);
        rbsp.resize(unescape(reading.place.bytes, reading.place.size, rbsp.data(), rbsp.size()));
        compare(reading);
    }

    std::set<std::string> shown;                 ///< what departs
    std::map<std::string, std::size_t> compared; ///< how many structures of a kind both readings have read

protected:
    virtual void compare(const unit_reading& reading) = 0;

    template <class Value>
    void hold(const std::string& name, const Value& old, const Value& now)
    {
        if (!(old == now))
            shown.insert(name);
    }
    /// The older reading of the unit, which is to fail where this one does.
    /// @return both have read it
    template <class Old, class... More>
    bool parse(const char* what, const unit_reading& reading, Old& old, const More&... more)
    {
        brenik::h2645_common_bitreader br(rbsp.data() + 1, rbsp.data() + rbsp.size());
        bool read = false;
        try {
            read = old.parse(br, more...);
        } catch (const brenik::h2645_common_malformed_code&) {
            read = false;
        }
        const bool failed = static_cast<bool>(reading.result.failure);
        if (read == failed)
            shown.insert(std::string(what) + (read ? " is read in spite of a failure" : " is refused"));
        compared[what] += read && !failed ? 1 : 0;
        return read && !failed;
    }

    support::bytes rbsp; ///< the unit without emulation prevention, its header byte first

private:
    stream reader;
};

/// What the older reading has in another way, and whether a stream of the repository shows it.
struct departure {
    const char* name;
    bool shown;
};

/// Every departure of the streams is in the table, those of the repository's streams as the table says; and structures
/// of each kind were compared.
template <class Comparison, std::size_t N>
void check_departures(const departure (&table)[N], const std::vector<const char*>& kinds)
{
    const auto run = [](const std::vector<std::filesystem::path>& streams, auto& shown, auto& compared) {
        for (const auto& path : streams) {
            Comparison comparison;
            comparison.of_stream(support::read_file(path));
            shown.merge(comparison.shown);
            for (const auto& [kind, count] : comparison.compared)
                compared[kind] += count;
        }
    };
    std::set<std::string> shown;
    std::map<std::string, std::size_t> compared;
    run(support::annexb_files(ORV_TEST_STREAMS), shown, compared);
    for (const char* kind : kinds)
        EXPECT_GT(compared[kind], 0U) << kind;
    std::set<std::string> known;
    for (const departure& d : table) {
        known.insert(d.name);
        EXPECT_EQ(shown.contains(d.name), d.shown) << d.name;
    }
    run(support::annexb_files(ORV_TEST_MORE_STREAMS), shown, compared);
    for (const std::string& name : shown)
        EXPECT_TRUE(known.contains(name)) << name;
}

} // namespace orv_utils_v4::h264
