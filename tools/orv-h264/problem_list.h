// What is wrong with a stream, problems of a kind together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orv_h264 {

/// Problems whose descriptions differ in their numbers at most.
struct problem_kind {
    std::string message; ///< of the first
    std::uint64_t first_offset = 0;
    std::uint64_t last_offset = 0;
    std::uint64_t count = 0;
    std::uint64_t bytes = 0; ///< of all of them, where they are stretches of the stream
};

class problem_list {
public:
    /// The most kinds told apart; the rest is one kind more, "further problems".
    static constexpr std::size_t most_kinds = 64;

    void add(std::uint64_t offset, const std::string& message, std::uint64_t bytes = 0)
    {
        add({message, offset, offset, 1, bytes});
    }
    /// All that another one has.
    void add(const problem_list& others);

    /// In the order in which they came up.
    const std::vector<problem_kind>& kinds() const noexcept { return list; }

private:
    void add(const problem_kind& more);

    std::vector<problem_kind> list;
    std::map<std::string, std::size_t> place; // in the list, by the message without its numbers
};

/// A kind in one line for a person.
std::string describe(const problem_kind& kind);
/// Likewise, to stand behind the offset of the first.
std::string describe_without_offset(const problem_kind& kind);

} // namespace orv_h264
