// Prints the JSON schema of what units hold, as the texts of the syntax library make it: units of every kind are made
// up and traced until nothing new comes. What the tool knows of elements without an index of their own is held against
// the same units: its output hangs on it.
#include "repeated_names.h"
#include "support/unit_maker.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;

enum class value_kind { flag, unsigned_number, signed_number, bytes, text };

struct element_shape {
    value_kind kind = value_kind::flag;
    unsigned depth = 0;
    bool fixed = false;    // f(n)
    bool repeated = false; // the same label came twice in a structure
    bool in_order = true;  // its indices rise
};

struct structure_shape {
    std::vector<std::string> order; // of the elements and structures in it
    std::map<std::string, element_shape> elements;
    std::map<std::string, bool> structures; // true: several of them
    bool outermost = false;
};

std::map<std::string, structure_shape> shapes;

void note_name(structure_shape& in, const std::string& name)
{
    if (std::find(in.order.begin(), in.order.end(), name) == in.order.end())
        in.order.push_back(name);
}

value_kind kind_of(const traced_element& e)
{
    if (e.how == coding::st)
        return value_kind::text;
    if (e.how == coding::b || e.bytes != nullptr)
        return value_kind::bytes;
    if (e.how == coding::se || e.how == coding::i || e.how == coding::i_v)
        return value_kind::signed_number;
    return e.bits == 1 && (e.how == coding::u || e.how == coding::f) ? value_kind::flag : value_kind::unsigned_number;
}

std::vector<std::uint32_t> indices_of(const label& name)
{
    std::vector<std::uint32_t> indices;
    for (unsigned i = 0; i < name.depth(); ++i)
        indices.push_back(name.index(i));
    return indices;
}

class shape_notes : public visitor {
public:
    void open(const char* name) override
    {
        structure_shape& shape = shapes[name];
        if (inside.empty()) {
            shape.outermost = true;
        } else {
            structure_shape& around = shapes[inside.back().name];
            note_name(around, name);
            around.structures[name] = around.structures[name] || !inside.back().structures.insert(name).second;
        }
        inside.push_back({name, {}, {}});
    }
    void close() override { inside.pop_back(); }
    void element(const traced_element& e) override
    {
        open_structure& here = inside.back();
        structure_shape& shape = shapes[here.name];
        note_name(shape, e.name.name());
        element_shape& noted = shape.elements[e.name.name()];
        noted.kind = std::max(noted.kind, kind_of(e));
        noted.depth = e.name.depth();
        noted.fixed = e.how == coding::f;
        const std::vector<std::uint32_t> indices = indices_of(e.name);
        const auto [latest, first] = here.latest.try_emplace(e.name.name(), indices);
        noted.repeated = noted.repeated || (!first && indices == latest->second);
        noted.in_order = noted.in_order && (first || latest->second <= indices);
        latest->second = indices;
    }

private:
    struct open_structure {
        std::string name;
        std::set<std::string> structures;
        std::map<std::string, std::vector<std::uint32_t>> latest; // indices, by element
    };

    std::vector<open_structure> inside;
};

void note_unit(const nal_unit& unit, const unit_context& context)
{
    static nal_unit room;
    const std::vector<unsigned char> bytes = written(unit, context);
    outcome result;
    shape_notes notes;
    if (!bytes.empty())
        trace(room, bytes.data(), bytes.size(), context, result, notes);
}

void note_all_units()
{
    constexpr unsigned rounds = 300; // after which nothing new has come in as many again
    constexpr unsigned types = 32;
    constexpr std::uint32_t payload_types = 206;
    for (unsigned seed = 0; seed < rounds; ++seed) {
        unit_maker maker(seed);
        maker.renew_sets();
        for (unsigned type = 0; type < types; ++type)
            if (type != 6)
                note_unit(maker.make(type), maker.context());
        for (std::uint32_t type = 0; type < payload_types; ++type) {
            const nal_unit unit = maker.make_sei(type);
            note_unit(unit, maker.context());
        }
    }
}

/// What the tool shows inside of user data registered by T.35.
void note_registered_user_data()
{
    constexpr unsigned char captions[] = {0, 0x31, 'G', 'A', '9', '4', 3, 0xC1, 0xFF, 0xFC, 0x80, 0x80, 0xFF};
    constexpr unsigned char bars[] = {0, 0x31, 'G', 'A', '9', '4', 6, 0xFF, 0xC0, 1, 0xC0, 2, 0xC0, 3, 0xC0, 4};
    constexpr unsigned char active_format[] = {0, 0x31, 'D', 'T', 'G', '1', 0x41, 0xF8};
    const auto note = [](const auto& bytes) {
        const user_data_registered_itu_t_t35 data = {
            registered_user_data::country_usa, 0, {std::begin(bytes), std::end(bytes)}};
        registered_user_data read;
        outcome result;
        shape_notes notes;
        notes.open("user_data_registered_itu_t_t35");
        trace_registered_user_data(read, data, result, notes);
        notes.close();
    };
    note(captions);
    note(bars);
    note(active_format);
    shapes["user_data_registered_itu_t_t35"].outermost = false;
}

/// What damaged units alone hold: bytes that are left over in a payload.
void note_left_over_bytes()
{
    element_shape bytes;
    bytes.kind = value_kind::bytes;
    note_name(shapes["sei_payload"], "payload_byte");
    shapes["sei_payload"].elements["payload_byte"] = bytes;
}

// What the tool knows

bool any_wrong = false;

void expect(bool holds, const std::string& what)
{
    if (!holds)
        static_cast<void>(std::fprintf(stderr, "%s\n", what.c_str()));
    any_wrong = any_wrong || !holds;
}

void check_what_the_tool_knows()
{
    for (const auto& [structure, shape] : shapes) {
        for (const auto& [name, element] : shape.elements) {
            const bool known = orv_h264::is_repeated_element(structure, name);
            const bool matters = !element.fixed && element.kind != value_kind::bytes;
            expect(!matters || !(element.repeated || !element.in_order) || known,
                   std::string(structure).append(".").append(name).append(" is repeated"));
        }
        for (const auto& [name, several] : shape.structures)
            expect(!several || orv_h264::is_repeated_structure(name),
                   std::string(structure).append(".").append(name).append(" is there twice"));
    }
}

// The schema

const char* reference_of(value_kind kind)
{
    switch (kind) {
    case value_kind::flag:
        return "flag";
    case value_kind::unsigned_number:
        return "unsigned";
    case value_kind::signed_number:
        return "signed";
    case value_kind::bytes:
        return "bytes";
    case value_kind::text:
        return "text";
    }
    return "";
}

std::string schema_of(const std::string& structure, const std::string& name, const element_shape& element)
{
    std::string schema = std::string(R"({"$ref": "#/$defs/)") + reference_of(element.kind) + "\"}";
    if (element.kind == value_kind::bytes)
        return schema;
    if (element.fixed || orv_h264::is_repeated_element(structure, name))
        return R"({"type": "array", "items": )" + schema + "}";
    for (unsigned i = 0; i < element.depth; ++i)
        schema.insert(0, R"({"type": "array", "items": {"anyOf": [)").append(R"(, {"type": "null"}]}})");
    return schema;
}

std::string schema_of_structure(const std::string& name, bool several)
{
    const std::string schema = R"({"$ref": "#/$defs/)" + name + "\"}";
    return several ? R"({"type": "array", "items": )" + schema + "}" : schema;
}

void print_properties(const std::string& structure)
{
    const structure_shape& shape = shapes[structure];
    for (const std::string& name : shape.order) {
        const auto element = shape.elements.find(name);
        const std::string schema = element != shape.elements.end()
                                       ? schema_of(structure, name, element->second)
                                       : schema_of_structure(name, orv_h264::is_repeated_structure(name));
        std::printf("        \"%s\": %s,\n", name.c_str(), schema.c_str());
    }
}

void print_structure(const std::string& name, const structure_shape& shape)
{
    std::printf("    \"%s\": {\n      \"type\": \"object\",\n      \"properties\": {\n", name.c_str());
    if (shape.outermost && name != "nal_unit")
        print_properties("nal_unit");
    print_properties(name);
    std::puts(R"(        "meaning": {"$ref": "#/$defs/meaning"},)");
    std::puts(R"(        "derived": {"$ref": "#/$defs/derived"},)");
    std::puts(R"(        "positions": {"$ref": "#/$defs/positions"})");
    std::puts("      },\n      \"additionalProperties\": false\n    },");
}

void print_schema()
{
    std::puts(R"json({
  "$schema": "https://json-schema.org/draft/2020-12/schema",
  "title": "The syntax structures of H.264, as orv-h264 shows them",
  "$comment": "Made from the texts of the syntax library by tests/schema/schema_of_texts.cpp.",
  "$defs": {
    "flag": {"description": "u(1)", "enum": [0, 1]},
    "unsigned": {"description": "u(n), ue(v)", "type": "integer", "minimum": 0, "maximum": 9223372036854775807},
    "signed": {"description": "i(n), se(v)", "type": "integer", "minimum": -2147483648, "maximum": 2147483647},
    "bytes": {"description": "a row of b(8), or an element of more than 64 bits: two hex digits a byte, of a row the first 65536 bytes; of a list the first 1048576 entries are told", "type": "string", "pattern": "^([0-9a-f][0-9a-f])*$"},
    "text": {"description": "st(v)", "type": "string"},
    "words": {"anyOf": [{"type": ["string", "null"]}, {"type": "array", "items": {"$ref": "#/$defs/words"}}]},
    "meaning": {"description": "what values mean, under the names of their elements", "type": "object", "additionalProperties": {"$ref": "#/$defs/words"}, "minProperties": 1},
    "derived": {"description": "what follows from elements", "type": "object", "minProperties": 1},
    "place": {"anyOf": [{"description": "byte in the file, bit in it (0 the most significant), number of bits", "type": "array", "items": {"type": "integer", "minimum": 0}, "minItems": 3, "maxItems": 3}, {"type": "array", "items": {"anyOf": [{"$ref": "#/$defs/place"}, {"type": "null"}]}}]},
    "positions": {"description": "where elements lie, under their names", "type": "object", "additionalProperties": {"$ref": "#/$defs/place"}, "minProperties": 1},)json");
    for (const auto& [name, shape] : shapes)
        print_structure(name, shape);
    std::puts(R"(    "fields": {"anyOf": [)");
    for (const auto& [name, shape] : shapes)
        if (shape.outermost && name != "nal_unit")
            std::printf("      {\"$ref\": \"#/$defs/%s\"},\n", name.c_str());
    std::puts("      {\"$ref\": \"#/$defs/nal_unit\"}\n    ]}\n  }\n}");
}

} // namespace

int main()
{
    note_all_units();
    note_registered_user_data();
    note_left_over_bytes();
    check_what_the_tool_knows();
    print_schema();
    return any_wrong ? 1 : 0;
}
