// The values of fields without their names, to tell whether two structures of a kind hold the same.
#pragma once

#include "field_sink.h"

#include <bit>
#include <vector>

namespace orv_h264 {

class field_values final : public field_sink {
public:
    void element(const element_name&, const field_value& value, std::string_view) override
    {
        std::visit([this](const auto& held) { add(held); }, value);
    }

    void bytes(const element_name&, std::span<const std::uint8_t> all, std::string_view) override { add(all); }

    void open(const element_name&, std::string_view) override {}
    void close() override {}
    void open_entry(const element_name&) override {}
    void close_entry() override {}
    void told(const fact&) override {}
    void derived(std::string_view, std::initializer_list<fact>) override {}

    std::vector<std::uint64_t> values;

private:
    void add(std::uint64_t value) { values.push_back(value); }
    void add(std::int64_t value) { values.push_back(static_cast<std::uint64_t>(value)); }
    void add(bool value) { values.push_back(value ? 1 : 0); }
    void add(std::nullptr_t) { values.push_back(0); }
    void add(double value) { values.push_back(std::bit_cast<std::uint64_t>(value)); }
    void add(std::string_view text) { values.insert(values.end(), text.begin(), text.end()); }
    void add(std::span<const std::uint8_t> list) { values.insert(values.end(), list.begin(), list.end()); }
};

} // namespace orv_h264
