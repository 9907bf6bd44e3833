#include "report/report_page.h"

#include "report/base64.h"
#include "report/page_parts.h"
#include "stream_input.h"

#include <orv-utils-v4/version.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::string_view plot_licence = "LICENSE";

const page_part* find_part(std::string_view name)
{
    const auto parts = page_parts();
    const auto found = std::find_if(parts.begin(), parts.end(), [=](const page_part& p) { return p.name == name; });
    return found == parts.end() ? nullptr : &*found;
}

/// The sum of a part as a policy has it.
std::string source_of(const page_part& part)
{
    std::string bytes;
    for (std::size_t i = 0; i + 1 < part.sha256.size(); i += 2) {
        unsigned byte = 0;
        std::from_chars(part.sha256.data() + i, part.sha256.data() + i + 2, byte, 16);
        bytes += static_cast<char>(byte);
    }
    return fmt::format(" 'sha256-{}'", base64(bytes));
}

/// Nothing is loaded, and no script or style runs but those that the tool was built with.
std::string policy()
{
    std::string scripts;
    std::string styles;
    for (const page_part& part : page_parts()) {
        if (part.name.ends_with(".js"))
            scripts += source_of(part);
        else if (part.name.ends_with(".css"))
            styles += source_of(part);
    }
    return fmt::format("default-src 'none'; script-src{}; style-src{}; base-uri 'none'; form-action 'none'", scripts,
                       styles);
}

void write_elements(std::string_view element, std::string_view ending,
                    const std::function<void(std::string_view)>& write)
{
    for (const page_part& part : page_parts())
        if (part.name.ends_with(ending)) {
            write(fmt::format("<{}>", element));
            write(part.text);
            write(fmt::format("</{}>\n", element));
        }
}

/// JSON whose text cannot end a script element, nor a line of a script.
std::string harmless(const json& data)
{
    const std::string text = json_line(data);
    std::string out;
    out.reserve(text.size() + text.size() / 64);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view rest = std::string_view(text).substr(i, 3);
        if (rest[0] == '<' || rest[0] == '>' || rest[0] == '&')
            out += fmt::format("\\u{:04x}", static_cast<unsigned>(rest[0]));
        else if (rest == "\xE2\x80\xA8" || rest == "\xE2\x80\xA9") { // U+2028, U+2029
            out += rest[2] == '\xA8' ? "\\u2028" : "\\u2029";
            i += 2;
        } else
            out += rest[0];
    }
    return out;
}

void write_data(json data, const std::function<void(std::string_view)>& write)
{
    data["version"] = ORV_UTILS_V4_VERSION;
    data["plot_licence"] = find_part(plot_licence)->text;
    write(harmless(data));
}

} // namespace

void require_page_parts()
{
    for (const std::string_view name :
         {std::string_view("uPlot.iife.min.js"), std::string_view("uPlot.min.css"), plot_licence})
        if (find_part(name) == nullptr)
            throw refusal(exit_not_supported,
                          "this orv-h264 was built without uPlot, which draws the plots of a report; script/bootstrap "
                          "fetches it, and the next build has it");
}

// page.html has a mark {{name}} wherever something is put in.
void write_page(const json& data, const std::function<void(std::string_view)>& write)
{
    std::string_view rest = find_part("page.html")->text;
    for (std::size_t mark = rest.find("{{"); mark != std::string_view::npos; mark = rest.find("{{")) {
        write(rest.substr(0, mark));
        const std::size_t end = rest.find("}}", mark);
        const std::string_view name = rest.substr(mark + 2, end - mark - 2);
        if (name == "policy")
            write(policy());
        else if (name == "styles")
            write_elements("style", ".css", write);
        else if (name == "scripts")
            write_elements("script", ".js", write);
        else if (name == "data")
            write_data(data, write);
        else
            throw std::logic_error(fmt::format("page.html has an unknown mark {}", name));
        rest.remove_prefix(end + 2);
    }
    write(rest);
}

} // namespace orv_h264
