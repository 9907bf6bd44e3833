#include "element_rows.h"

#include "element_text.h"
#include "standard_output.h"

#include <algorithm>

namespace orv_h264 {

void element_rows::begin_table(char separator)
{
    tab = separator;
    text = "unit\tnal_unit_type\tbyte\tbit_in_byte\tbit\tbits\tdescriptor\tstructure\tname\tvalue\tinside\n";
    std::replace(text.begin(), text.end(), '\t', separator);
}

void element_rows::begin(const h264::unit_place& place)
{
    unit_columns.clear();
    append_number(unit_columns, place.number);
    unit_columns += tab;
    append_number(unit_columns, place.size == 0 ? 0U : place.bytes[0] & 0x1FU);
    unit_columns += tab;
    raw_bytes.emplace(place.bytes, place.size);
    offset = place.offset;
    path.clear();
    lengths.clear();
}

void element_rows::open(const char* name)
{
    guarded([&] {
        lengths.push_back(path.size());
        if (!path.empty())
            path += '.';
        path += name;
    });
}

void element_rows::close()
{
    if (lengths.empty()) // there was no memory for it
        return;
    path.resize(lengths.back());
    lengths.pop_back();
}

void element_rows::end()
{
    guarded.check();
}

void element_rows::element(const h264::traced_element& e)
{
    constexpr std::size_t enough = std::size_t{256} * 1024;
    if (text.size() >= enough) {
        put_output(text);
        text.clear();
    }
    guarded([&] { add_row(e); });
}

// What is short is put together aside, which takes a third of the time that appending each of it does.
void element_rows::add_row(const h264::traced_element& e)
{
    char columns[4 * (most_digits + 1) + most_descriptor + 1];
    char* end = columns;
    for (const std::uint64_t number : {offset + (*raw_bytes)(e.bit / 8), e.bit % 8, e.bit, e.bits}) {
        end = put_number(end, number);
        *end++ = tab;
    }
    end = put_descriptor(end, e);
    *end++ = tab;
    text += unit_columns;
    text.append(columns, static_cast<std::size_t>(end - columns));
    text += path;
    text += tab;
    append_label(text, e.name);
    text += tab;
    end = columns;
    if (e.bytes == nullptr)
        end = put_number(end, e.value);
    else
        append_value(text, e);
    *end++ = tab;
    *end++ = e.inside ? '1' : '0';
    *end++ = '\n';
    text.append(columns, static_cast<std::size_t>(end - columns));
}

} // namespace orv_h264
