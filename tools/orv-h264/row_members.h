// What a row of frames is for programs: its members in their order, told to a line of JSON, of a table, or of names.
#pragma once

#include "container/container_check.h"
#include "picture_rows.h"
#include "show_rows.h"

#include <optional>
#include <string_view>

namespace orv_h264 {

/// `line` has a function member(name, value) for texts, numbers, times, lists of them, and each of these as an
/// optional.
template <class Line>
void tell_packet(const std::optional<logged_packet>& packet, container_ratio tick, Line& line)
{
    const logged_packet of = packet.value_or(logged_packet());
    const bool lasts = packet && of.duration > 0;
    line.member("packet", packet ? std::optional(of.number) : std::nullopt);
    line.member("container_key", of.key);
    line.member("container_pts", time_of(of.pts, tick));
    line.member("container_dts", time_of(of.dts, tick));
    line.member("container_duration", lasts ? time_of(of.duration, tick) : h264::exact_time());
}

/// All behind the member "record"; those of a container where the stream is in one, whose tick is `tick`.
template <class Line>
void tell_row(const picture_row& row, std::optional<container_ratio> tick, Line& line)
{
    line.member("number", row.number);
    line.member("picture", row.picture);
    line.member("output_number", row.output_number);
    line.member("offset", row.offset);
    line.member("size", row.size);
    line.member("unit_bytes", row.unit_bytes);
    line.member("padding", row.padding);
    line.member("filler", row.filler);
    line.member("key", row.key());
    line.member("idr", row.idr);
    line.member("recovery_frame_cnt", row.recovery_frame_cnt);
    line.member("slice_types", slice_types(row));
    line.member("structure", std::string_view(structure_name(row.structure)));
    line.member("frame_num", row.frame_num);
    line.member("poc", row.poc);
    line.member("nal_ref_idc", row.nal_ref_idc);
    line.member("pts", row.pts);
    line.member("dts", row.dts);
    line.member("time_source", std::string_view(source_name(row.time_source)));
    line.member("field_duration", row.field_duration);
    line.member("duration", row.duration);
    line.member("pic_struct", row.pic_struct);
    line.member("sps_id", row.sps_id);
    line.member("pps_id", row.pps_id);
    line.member("layers", row.layers);
    line.member("coded_pictures", row.coded_pictures);
    line.member("nal_unit_types", row.units);
    line.member("cut", row.cut);
    line.member("last", row.last);
    if (tick)
        tell_packet(row.packet, *tick, line);
}

} // namespace orv_h264
