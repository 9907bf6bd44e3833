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
}

void element_rows::open(const char* name)
{
    guarded([&] {
        if (!path.empty())
            path += '.';
        path += name;
    });
}

void element_rows::close()
{
    const std::size_t dot = path.rfind('.');
    path.resize(dot == std::string::npos ? 0 : dot);
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

void element_rows::add_row(const h264::traced_element& e)
{
    text += unit_columns;
    append_number(text, offset + (*raw_bytes)(e.bit / 8));
    text += tab;
    append_number(text, e.bit % 8);
    text += tab;
    append_number(text, e.bit);
    text += tab;
    append_number(text, e.bits);
    text += tab;
    append_descriptor(text, e);
    text += tab;
    text += path;
    text += tab;
    append_label(text, e.name);
    text += tab;
    append_value(text, e);
    text += tab;
    text += e.inside ? "1\n" : "0\n";
}

} // namespace orv_h264
