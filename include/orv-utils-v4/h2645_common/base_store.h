/// @file
/// Parameter sets by id, kept by the application and read by the parses that refer to them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <utility>

namespace brenik {

/// What h2645_common_base_store::at() does without an entry: throws, or aborts where exceptions are turned off.
[[noreturn]] inline void h2645_common_no_entry()
{
#ifdef __cpp_exceptions
    throw std::out_of_range("map::at");
#else
    std::abort();
#endif
}

/// The parsed parameter sets of one kind, each under its own id (`seq_parameter_set_id`, `pic_parameter_set_id`). The
/// application fills it after a successful parse; the parses of the library only read it. It has no lock.
template <typename T>
class h2645_common_base_store {
public:
    /// The current id of a store without a current parameter set.
    static constexpr std::uint32_t no_current_id = 0xFFFFFFFF;

    /// The id of the parameter set that is current for the stream; see set_current_id().
    std::uint32_t current = no_current_id;
    /// The parameter sets in ascending order of their ids.
    std::map<std::uint32_t, T> entries;

    /// The parameter set stored under `id`, or a null pointer. It stays where it is until it is replaced or erased.
    const T* find(std::uint32_t id) const
    {
        const auto entry = entries.find(id);
        return entry == entries.end() ? nullptr : &entry->second;
    }

    /// The parameter set stored under `id`.
    /// @throws std::out_of_range with the text "map::at" when there is none. In a caller compiled without exceptions it
    ///     ends the process; there find() is the better question
    const T& at(std::uint32_t id) const
    {
        if (const T* const entry = find(id))
            return *entry;
        h2645_common_no_entry();
    }

    /// Stores `parameter_set` under `id`, in place of an older one. The current id stays as it is.
    void insert_or_assign(std::uint32_t id, T parameter_set) { entries.insert_or_assign(id, std::move(parameter_set)); }

    /// Removes what is stored under `id`; false when there is nothing.
    bool erase(std::uint32_t id) { return entries.erase(id) != 0; }

    /// How many parameter sets are stored.
    std::size_t size() const { return entries.size(); }

    /// The id of the current parameter set, or 0xFFFFFFFF when none is.
    std::uint32_t current_id() const { return current; }

    /// Makes the parameter set under `id` the current one, whether it is stored or not; 0xFFFFFFFF for none.
    void set_current_id(std::uint32_t id) { current = id; }

    /// The first (id, parameter set), by ascending id.
    auto begin() const { return entries.begin(); }
    /// Behind the last (id, parameter set).
    auto end() const { return entries.end(); }
};

} // namespace brenik
