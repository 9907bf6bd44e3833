// An annotated trace kept as lines, so that a test spells what is told.
#pragma once

#include "annotated_trace.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace support {

using lines = std::vector<std::string>;

/// "heading {", "name value (words)", "name: 2 bytes", "= name json", "}".
class annotated_notes : public orv_h264::annotated_sink {
public:
    void open(std::string_view, std::string_view heading) override { put(std::string(heading) + " {"); }
    void close() override { put("}"); }
    void element(const orv_h264::shown_element& shown) override
    {
        put(name_of(shown) + " " + std::to_string(shown.element.value) + words_in(shown) +
            (shown.repeated ? " repeated" : ""));
        places.push_back({shown.element.name.name(), shown.byte});
    }
    void bytes(const orv_h264::shown_element& first, orv_h264::byte_span all) override
    {
        EXPECT_EQ(first.element.bits, 8 * all.size());
        EXPECT_EQ(first.element.value, all.front());
        put(name_of(first) + ": " + std::to_string(all.size()) + " bytes" + words_in(first));
        places.push_back({first.element.name.name(), first.byte});
    }
    void follows(const orv_h264::fact& what) override
    {
        put("= " + std::string(what.name) + " " + what.json);
        texts.push_back(what.text);
    }

    support::lines lines;
    support::lines texts; ///< of the facts

    struct place {
        std::string name;
        std::uint64_t byte;

        friend bool operator==(const place&, const place&) = default;
    };
    std::vector<place> places; ///< of the elements in the file

private:
    virtual void put(const std::string& line) { lines.push_back(line); }

    static std::string name_of(const orv_h264::shown_element& shown)
    {
        std::string name = shown.element.name.name();
        for (unsigned i = 0; i < shown.element.name.depth(); ++i)
            name += "[" + std::to_string(shown.element.name.index(i)) + "]";
        return name;
    }
    static std::string words_in(const orv_h264::shown_element& shown)
    {
        return shown.words.empty() ? "" : " (" + std::string(shown.words) + ")";
    }
};

/// What is told to `trace` goes into the notes of a unit that lies at offset 100 of its file.
struct noted_trace {
    explicit noted_trace(bool all_elements = false) : trace(notes, all_elements)
    {
        trace.begin({unit.data(), unit.size(), 100, 0});
    }
    noted_trace(const noted_trace&) = delete;
    noted_trace& operator=(const noted_trace&) = delete;

    std::vector<unsigned char> unit = std::vector<unsigned char>(1000, 0x41);
    annotated_notes notes;
    orv_h264::annotated_trace trace;
};

} // namespace support
