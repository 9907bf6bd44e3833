/// @file
/// The units of a stream in decoding order: reads each with the parameter sets that are active for it (H.264 clauses
/// 7.4.1.2.1, G.7.4.1.2.1, H.7.4.1.2.1).
#pragma once

#include <orv-utils-v4/h264_syntax/nal_unit.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace orv_utils_v4::h264 {

/// Where a unit comes from.
struct unit_place {
    const unsigned char* bytes = nullptr; ///< the unit, emulation-prevention bytes in; valid during the call
    std::size_t size = 0;
    std::uint64_t offset = 0; ///< of its header byte in the stream
    std::uint64_t number = 0; ///< as the caller counts
};

/// A unit that was read. What it points to is valid during the call.
struct unit_reading {
    unit_place place;
    const nal_unit& unit;              ///< what it holds, up to a failure
    const outcome& result;             ///< how it went
    const unit_context& context;       ///< what it was read with: writing it needs the same
    const seq_parameter_set_data* sps; ///< that a slice stands on, or an SEI message is read with; or null
    const pic_parameter_set_rbsp* pps; ///< that a slice stands on; or null
};

/// Who takes the readings. No member may throw.
class unit_sink {
public:
    virtual ~unit_sink() = default;
    /// The unit is about to be read.
    /// @return whom its elements are told to, or null
    virtual visitor* before(const unit_place& place)
    {
        static_cast<void>(place);
        return nullptr;
    }
    /// The unit has been read.
    virtual void take(const unit_reading& reading) = 0;

protected:
    /// For derived classes.
    unit_sink() = default;
    /// For derived classes.
    unit_sink(const unit_sink&) = default;
    /// For derived classes.
    unit_sink& operator=(const unit_sink&) = default;
};

/// Keeps the parameter sets of a stream and reads its units, in order. A unit goes to the sink as soon as it is known
/// what it is to be read with: an SEI unit, and what follows it, when the first slice of its access unit has come.
class ORV_UTILS_V4_EXPORT stream {
public:
    /// The bytes that a unit of another kind than slices is read from: what is longer fails with unit_too_long.
    static constexpr std::size_t most_unit_bytes = std::size_t{16} << 20;
    /// The same of a parameter set, which is kept: those of the standard are shorter, a slice group for each macroblock
    /// of the largest pictures included.
    static constexpr std::size_t most_parameter_set_bytes = std::size_t{64} << 10;
    /// The bytes of a slice that its header is looked for in.
    static constexpr std::size_t most_slice_header_bytes = std::size_t{96} << 10;
    /// What is kept back until a slice comes; beyond it the units are read with what is active.
    static constexpr std::size_t most_held_bytes = std::size_t{4} << 20;
    static constexpr std::size_t most_held_units = 4096;

    /// One without parameter sets.
    stream();
    ~stream();
    /// What it has kept goes on in the new one.
    stream(stream&&) noexcept;
    /// Likewise.
    stream& operator=(stream&&) noexcept;

    /// The next unit.
    void push(const unit_place& place, unit_sink& to);
    /// What is kept back is read with what is active: the stream has ended, or what follows does not belong to it.
    void flush(unit_sink& to);

    /// The parameter sets as they stand.
    const parameter_sets& sets() const noexcept;

private:
    friend class stream_unit;
    struct state;
    std::unique_ptr<state> s;
};

} // namespace orv_utils_v4::h264
