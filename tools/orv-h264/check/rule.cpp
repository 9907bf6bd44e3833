#include "check/rule.h"

#include <charconv>
#include <utility>
#include <vector>

namespace orv_h264 {

namespace {

/// The numbers of a clause, the letter of an annex as one beyond those of all clauses: what clauses are ordered by.
std::vector<unsigned> numbers_of(std::string_view clause)
{
    constexpr unsigned above_clauses = 1000;
    std::vector<unsigned> numbers;
    while (!clause.empty()) {
        unsigned number = 0;
        const char* const end = clause.data() + clause.size();
        const char* stop = std::from_chars(clause.data(), end, number).ptr;
        if (stop == clause.data() && clause.front() >= 'A' && clause.front() <= 'Z')
            number = above_clauses + static_cast<unsigned char>(*stop++);
        else if (stop == clause.data())
            ++stop; // a dot
        if (number != 0)
            numbers.push_back(number);
        clause.remove_prefix(static_cast<std::size_t>(stop - clause.data()));
    }
    return numbers;
}

} // namespace

std::string_view name_of(severity level)
{
    constexpr std::string_view names[] = {"error", "warning", "note"};
    return names[static_cast<unsigned>(level)];
}

breach breach_of(std::string_view element, std::int64_t found, std::string allowed)
{
    return breach_of(element, std::to_string(found), std::move(allowed));
}

breach breach_of(std::string_view element, std::string found, std::string allowed)
{
    return {std::string(element), std::move(found), std::move(allowed)};
}

bool stands_before(const rule* one, const rule* other)
{
    const auto key = [](const rule* of) {
        constexpr std::string_view elsewhere = "ISO/IEC ";
        const bool is_other = of->clause.starts_with(elsewhere);
        const std::string_view clause =
            is_other ? of->clause.substr(of->clause.find(' ', elsewhere.size())) : of->clause;
        return std::pair(is_other, numbers_of(clause));
    };
    return key(one) < key(other);
}

} // namespace orv_h264
