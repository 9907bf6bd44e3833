// Each element is kept in the member of its name: a text that kept two in each other's members would read and write
// alike, and tell the right values.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

/// The arguments of the call whose opening parenthesis stands at `open`, without blanks.
std::vector<std::string> arguments_at(const std::string& text, std::size_t open)
{
    std::vector<std::string> all(1);
    int depth = 0;
    for (std::size_t i = open; i < text.size(); ++i) {
        const char c = text[i];
        depth += c == '(' || c == '{' || c == '[' ? 1 : 0;
        depth -= c == ')' || c == '}' || c == ']' ? 1 : 0;
        if (depth == 0)
            break;
        if (c == ',' && depth == 1)
            all.emplace_back();
        else if (i != open && std::isspace(static_cast<unsigned char>(c)) == 0)
            all.back() += c;
    }
    return all;
}

/// The name in a label: "name" or {"name", i}; empty when the argument is none.
std::string name_in(const std::string& argument)
{
    const std::size_t begin = argument.find('"');
    if (begin > 1)
        return {};
    return argument.substr(begin + 1, argument.find('"', begin + 1) - begin - 1);
}

/// The last member of x.list[i].name[j], without its indices.
std::string member_in(std::string expression)
{
    while (!expression.empty() && expression.back() == ']')
        expression.resize(expression.rfind('['));
    const std::size_t dot = expression.rfind('.');
    return expression.substr(dot == std::string::npos ? 0 : dot + 1);
}

/// Elements that are no member of their name: their bytes, or a name that C++ does not have.
const std::map<std::string, std::string> others = {
    {"3dv_acquisition_idc", "three_dv_acquisition_idc"},
    {"filter_hint", "hint"},
    {"zero_run_length", "*zero_run_length"},
};

/// Compares what a file has, and counts it.
std::size_t check(const std::filesystem::path& path)
{
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::size_t count = 0;
    for (const std::string coder : {"c.u(", "c.u_v(", "c.u_v_long(", "c.i(", "c.i_v(", "c.ue(", "c.se(", "c.flag(",
                                    "c.b(", "c.st(", "c.ue_bound(", "c.u_bound(", "c.u_bytes("}) {
        for (std::size_t at = text.find(coder); at != std::string::npos; at = text.find(coder, at + 1)) {
            const std::vector<std::string> arguments = arguments_at(text, at + coder.size() - 1);
            for (std::size_t i = 0; i + 1 < arguments.size() && i < 2; ++i) {
                const std::string name = name_in(arguments[i]);
                if (name.empty())
                    continue;
                const auto other = others.find(name);
                EXPECT_EQ(member_in(arguments[i + 1]), other == others.end() ? name : other->second) << path;
                ++count;
                break;
            }
        }
    }
    return count;
}

/// Where the texts are; script/planted-syntax has others.
std::filesystem::path texts()
{
    const char* const elsewhere = std::getenv("ORV_TEST_TEXTS");
    return elsewhere != nullptr ? elsewhere : ORV_TEST_TEXTS;
}

TEST(SyntaxMembers, AnElementIsKeptInTheMemberOfItsName)
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(texts())) {
        if (entry.path().extension() == ".h")
            count += check(entry.path());
    }
    EXPECT_GE(count, 850U);
}

} // namespace
