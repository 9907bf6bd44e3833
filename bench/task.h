// What is measured: a task, and who does it.
#pragma once

#include "data_set.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

enum class side {
    ours,   ///< the libraries
    peer,   ///< what others use for it
    memory, ///< a pass over the same bytes that does nothing else
    scalar, ///< the loop as the clause words it
};

inline const char* name_of(side who)
{
    switch (who) {
    case side::ours:
        return "ours";
    case side::peer:
        return "peer";
    case side::memory:
        return "memory";
    case side::scalar:
        return "scalar";
    }
    return "?";
}

/// One way to do a task. The result is a number that must be the same for all of them (units, bytes, frames), 0 from
/// a peer that cannot tell, and from a pass over the memory.
struct contender {
    side who;
    std::string name;
    std::function<std::uint64_t(data_set&)> run;
};

struct task {
    std::string name;
    std::function<std::uint64_t(const data_set&)> bytes; ///< that one run takes in
    std::vector<std::string> data;                       ///< names of data sets
    std::vector<contender> contenders;
    bool is_counted = true; ///< one run goes over the units of the data set: instructions a unit mean something
};

std::vector<task> split_tasks();
std::vector<task> decode_tasks();
std::vector<task> encode_tasks();
std::vector<task> header_tasks();
std::vector<task> frame_tasks();
std::vector<task> reframe_tasks();
std::vector<task> syntax_tasks();

/// Those that the program was built with; empty when it was built without.
namespace peers {
std::vector<contender> split();
std::vector<contender> decode();
std::vector<contender> encode();
std::vector<contender> headers();
std::vector<contender> frames();
std::vector<contender> to_length4();
std::vector<contender> to_annex_b();

/// Of what they come from.
std::vector<std::pair<std::string, std::string>> versions();
} // namespace peers

/// Room for the largest unit of a data set, written or read back.
inline std::vector<unsigned char>& scratch_for(const data_set& set)
{
    static std::vector<unsigned char> room;
    room.resize(std::max(room.size(), 2 * set.largest_unit + data_set::padding));
    return room;
}

inline std::vector<contender> operator+(std::vector<contender> all, const std::vector<contender>& more)
{
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

} // namespace bench
