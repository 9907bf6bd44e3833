#include "check/delivery_profile.h"

#include "input_file.h"
#include "stream_input.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

__extension__ using wide = __int128; // holds the product of any two 64-bit numbers

constexpr std::string_view quantity_names[] = {
    "",           "width",  "height",        "frame_rate",   "hrd_bit_rate", "hrd_buffer",
    "delimiters", "slices", "picture_bytes", "key_distance", "key_seconds",  "b_pictures"};

struct named_relation {
    std::string_view name;
    relation how;
};

constexpr named_relation relations[] = {{"is not", relation::is_not},   {"is", relation::is},
                                        {"at most", relation::at_most}, {"at least", relation::at_least},
                                        {"one of", relation::one_of},   {"present", relation::present}};

/// Takes words off the front of a line.
class line_words {
public:
    explicit line_words(std::string_view line) : rest(line) { trim(); }

    bool empty() const { return rest.empty(); }
    std::string_view all() const { return rest; }
    std::string_view next()
    {
        const std::string_view word = rest.substr(0, rest.find_first_of(" \t\r"));
        rest.remove_prefix(word.size());
        trim();
        return word;
    }
    /// Takes the words, if they are the next ones.
    bool take(std::string_view words)
    {
        if (!rest.starts_with(words) || (rest.size() > words.size() && rest[words.size()] != ' '))
            return false;
        rest.remove_prefix(words.size());
        trim();
        return true;
    }

private:
    void trim() { rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r"), rest.size())); }

    std::string_view rest;
};

/// 1 to 9 digits.
std::optional<std::int64_t> number_in(std::string_view text)
{
    constexpr std::size_t most_digits = 9;
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || text.size() > most_digits || error != std::errc() || stop != end)
        return {};
    return number;
}

/// "25", "-3", "1.5" or "30000/1001".
std::optional<fraction> fraction_in(std::string_view text)
{
    const std::size_t slash = std::min(text.find('/'), text.size());
    const std::size_t point = std::min(text.find('.'), text.size());
    if (slash == text.size() && point == text.size()) {
        const auto whole = number_in(text);
        return whole ? std::optional(fraction{*whole, 1}) : std::nullopt;
    }
    if (point == text.size()) {
        const auto above = number_in(text.substr(0, slash));
        const auto below = number_in(text.substr(slash + 1));
        return above && below && *below > 0 ? std::optional(fraction{*above, *below}) : std::nullopt;
    }
    const auto digits = number_in(std::string(text.substr(0, point)) + std::string(text.substr(point + 1)));
    std::int64_t below = 1;
    for (std::size_t i = point + 1; i < text.size(); ++i)
        below *= 10;
    return digits ? std::optional(fraction{*digits, below}) : std::nullopt;
}

std::optional<severity> severity_in(std::string_view word)
{
    for (const severity level : {severity::error, severity::warning, severity::note})
        if (name_of(level) == word)
            return level;
    return {};
}

/// Throws std::string, what is wrong with the line.
class requirement_parser {
public:
    requirement_parser(std::string_view profile_name, std::string_view line)
        : profile(profile_name),
          words(line.substr(0, line.find('#'))),
          why(line.find('#') == std::string_view::npos ? "" : line.substr(line.find('#') + 1))
    {
    }

    std::unique_ptr<requirement> parse()
    {
        auto made = std::make_unique<requirement>();
        const std::string_view subject = words.next();
        take_subject(subject, *made);
        made->allowed = words.all();
        const auto* const how = std::find_if(std::begin(relations), std::end(relations),
                                             [this](const named_relation& each) { return words.take(each.name); });
        if (how == std::end(relations))
            throw fmt::format("'{}' is no relation (is, is not, at most, at least, one of, present)", words.all());
        made->how = how->how;
        take_values(*made);
        make_rule(subject, *made);
        return made;
    }

private:
    static void take_subject(std::string_view subject, requirement& to)
    {
        const auto* const named = std::find(std::begin(quantity_names) + 1, std::end(quantity_names), subject);
        if (named != std::end(quantity_names)) {
            to.of = static_cast<quantity>(named - std::begin(quantity_names));
            return;
        }
        const std::size_t dot = subject.rfind('.');
        if (dot != std::string_view::npos)
            to.structure = subject.substr(0, dot);
        to.element = subject.substr(dot + 1); // all of it where there is no dot
    }

    void take_values(requirement& to)
    {
        while (!words.empty()) {
            const std::string_view word = words.next();
            const auto value = fraction_in(word);
            const auto weighs = severity_in(word);
            if (value)
                to.values.push_back(*value);
            else if (weighs && words.empty())
                level = *weighs;
            else
                throw fmt::format("'{}' is no number", word);
        }
        const bool fits = to.how == relation::present  ? to.values.empty()
                          : to.how == relation::one_of ? !to.values.empty()
                                                       : to.values.size() == 1;
        if (!fits)
            throw std::string("the relation has another number of values");
        if (to.how == relation::present && to.of != quantity::none)
            throw std::string("'present' is for elements");
    }

    void make_rule(std::string_view subject, requirement& to) const
    {
        if (const std::size_t end = to.allowed.rfind(name_of(level)); end != std::string::npos && end > 0)
            to.allowed.erase(end);
        while (to.allowed.ends_with(' ') || to.allowed.ends_with('\t'))
            to.allowed.pop_back();
        to.title = fmt::format("{} {}", subject, to.how == relation::present ? "is sent" : to.allowed);
        if (to.how == relation::is)
            to.allowed.erase(0, std::string_view("is ").size());
        to.id = fmt::format("{}-{}", profile, subject);
        to.clause = fmt::format("profile {}", profile);
        to.about = line_words(why).empty()
                       ? fmt::format("The delivery profile {} asks for it.", profile)
                       : fmt::format("The delivery profile {} asks for it: {}.", profile, line_words(why).all());
        to.example = fmt::format("a stream of another {}", subject);
        to.what = {to.id, level, to.clause, to.title, to.about, to.example};
    }

    std::string_view profile;
    line_words words;
    std::string_view why;
    severity level = severity::error;
};

std::string content_of(const std::string& path)
{
    constexpr std::size_t most = std::size_t{1} << 20;
    input_file file(path);
    std::string text(most + 1, '\0');
    std::size_t size = 0;
    for (std::size_t more = 1; more > 0 && size < text.size(); size += more)
        more = file.read(reinterpret_cast<unsigned char*>(text.data()) + size, text.size() - size);
    if (size > most)
        throw refusal(exit_usage_or_io, file.name() + ": no profile of delivery is as long as that");
    text.resize(size);
    return text;
}

} // namespace

std::string_view name_of(quantity what)
{
    return quantity_names[static_cast<std::size_t>(what)];
}

bool requirement::is_met_by(fraction value) const
{
    const auto compared = [value](fraction with) {
        const wide left = wide{value.numerator} * with.denominator;
        const wide right = wide{with.numerator} * value.denominator;
        return left < right ? -1 : left > right ? 1 : 0;
    };
    switch (how) {
    case relation::is:
        return compared(values.front()) == 0;
    case relation::is_not:
        return compared(values.front()) != 0;
    case relation::at_most:
        return compared(values.front()) <= 0;
    case relation::at_least:
        return compared(values.front()) >= 0;
    case relation::one_of:
        return std::any_of(values.begin(), values.end(), [&](fraction v) { return compared(v) == 0; });
    case relation::present:
        break;
    }
    return true;
}

delivery_profile parse_profile(std::string_view name, std::string_view text, const std::string& from)
{
    delivery_profile profile{std::string(name), "", {}};
    unsigned number = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        ++number;
        line_words words(line);
        if (words.empty() || words.all().starts_with('#'))
            continue;
        if (words.take("about")) {
            profile.about = words.all();
            continue;
        }
        try {
            profile.requirements.push_back(requirement_parser(profile.name, line).parse());
        } catch (const std::string& wrong) {
            throw refusal(exit_usage_or_io, fmt::format("{}: line {}: {}", from, number, wrong));
        }
    }
    if (profile.requirements.empty())
        throw refusal(exit_usage_or_io, from + ": nothing is asked for");
    return profile;
}

delivery_profile load_profile(const std::string& name_or_path)
{
    for (const embedded_file& shipped : shipped_profiles())
        if (shipped.name == name_or_path + ".profile")
            return parse_profile(name_or_path, shipped.text, name_or_path);
    if (!std::filesystem::exists(name_or_path) && name_or_path.find('/') == std::string::npos) {
        std::string known;
        for (const embedded_file& shipped : shipped_profiles())
            known += (known.empty() ? "" : ", ") + std::filesystem::path(shipped.name).stem().string();
        throw refusal(
            exit_usage_or_io,
            fmt::format("there is no file '{}', and the profiles that come with the tool are {}", name_or_path, known));
    }
    return parse_profile(std::filesystem::path(name_or_path).stem().string(), content_of(name_or_path), name_or_path);
}

} // namespace orv_h264
