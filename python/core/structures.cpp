// The structures of the public headers, listed by list-structures, and their members, whose types the compiler finds.
#include <orv-utils-v4/h264_syntax.h>

#include "structure_numbers.h"

#include <cstddef>

namespace orv_python {

namespace {

// Members of a type that offsetof() is for in practice, though the standard does not promise it.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

#define ORV_STRUCTURE(NAME, ABOUT)                                                                                     \
    namespace members_of_##NAME                                                                                        \
    {                                                                                                                  \
        using self = h264::NAME;                                                                                       \
        constexpr member all[] = {
#define ORV_MEMBER(NAME, MEMBER, ABOUT) {#MEMBER, offsetof(self, MEMBER), &kind_of<decltype(self::MEMBER)>, ABOUT},
#define ORV_END(NAME)                                                                                                  \
    {                                                                                                                  \
        nullptr, 0, nullptr, nullptr                                                                                   \
    }                                                                                                                  \
    }                                                                                                                  \
    ;                                                                                                                  \
    }
#include "structures.inc"
#undef ORV_STRUCTURE
#undef ORV_MEMBER
#undef ORV_END

template <class T, std::size_t N>
constexpr structure described(const char* name, const char* about, const member (&members)[N]) noexcept
{
    using functions = structure_functions<T>;
    return {name,
            about,
            members,
            N - 1,
            functions::make,
            functions::copy,
            functions::destroy,
            functions::assign,
            functions::equal};
}

} // namespace

const structure structures[] = {
#define ORV_STRUCTURE(NAME, ABOUT) described<h264::NAME>(#NAME, ABOUT, members_of_##NAME::all),
#define ORV_MEMBER(NAME, MEMBER, ABOUT)
#define ORV_END(NAME)
#include "structures.inc"
};

const int structure_count = static_cast<int>(sizeof structures / sizeof *structures);

} // namespace orv_python
