// Allocations that fail, whoever makes do without: the syntax library, which throws nothing, reads a unit as damaged or
// leaves it out then. Nothing is printed and no file put in its place behind that, as if it had been so in the stream.
#pragma once

namespace orv_h264 {

/// From now on it is noted when an allocation fails.
void watch_allocations() noexcept;

/// One has failed since this was asked last.
bool take_failed_allocation() noexcept;

/// Throws std::bad_alloc when one has.
void check_allocations();

} // namespace orv_h264
