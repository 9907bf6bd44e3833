// The frames of the stream, read from their columns: the other side of report_frames.cpp.
"use strict";

const TYPE_I = 0, TYPE_P = 1, TYPE_B = 2, TYPE_NONE = 3;
const TYPE_NAMES = ["I", "P", "B", "none"];

/// The numbers of a column: seven bits a byte, the lowest first; behind two equal ones how many further ones follow.
function decode_column(text, count) {
    const plain = atob(text);
    const bytes = new Uint8Array(plain.length);
    for (let i = 0; i < plain.length; ++i)
        bytes[i] = plain.charCodeAt(i);
    const numbers = new Float64Array(count);
    let at = 0;
    const next = () => {
        let number = 0;
        for (let factor = 1; ; factor *= 128) {
            const byte = bytes[at++];
            number += (byte & 127) * factor;
            if (byte < 128)
                return number;
        }
    };
    for (let i = 0; i < count;) {
        const number = numbers[i++] = next();
        if (i > 1 && numbers[i - 2] === number) {
            const further = next();
            numbers.fill(number, i, i + further);
            i += further;
        }
    }
    return numbers;
}

function unfold(number) {
    return number % 2 === 0 ? number / 2 : -(number + 1) / 2;
}

/// In place: each number from the one before it, as `step` tells.
function each_in_turn(numbers, step) {
    for (let i = 0; i < numbers.length; ++i)
        numbers[i] = step(numbers[i], i);
    return numbers;
}

/// 0 stands for none, here NaN.
function optional(number, value) {
    return number === 0 ? NaN : value(unfold(number - 1));
}

/// What many frames have in common. A frame whose entry found no room has an empty one.
function read_kind(entry, frames) {
    if (entry === null)
        return { told: false, type: TYPE_NONE, units: [], slice_types: [], layers: [], idr: false };
    const [units, layers, coded_pictures, idr, structure, nal_ref_idc, time_source, field_duration, duration, pic_struct,
        sps_id, pps_id, cut, last] = entry;
    const runs = frames.units[units] ?? [];
    const slice_types = [...new Set(runs.map(run => run[2]).filter(type => type !== ""))];
    const has = (...types) => types.some(type => slice_types.includes(type));
    return {
        told: true, units: runs, slice_types, coded_pictures, idr: idr === 1, structure, nal_ref_idc, time_source,
        layers: layers < 0 ? [] : frames.layers[layers] ?? [],
        field_duration, duration, pic_struct, sps_id, pps_id, cut: cut === 1, last: last === 1,
        seconds: duration === null ? NaN : duration[0] / duration[1],
        type: has("B") ? TYPE_B : has("P", "SP") ? TYPE_P : has("I", "SI") ? TYPE_I : TYPE_NONE,
    };
}

/// From one picture to another so many places further in output order.
function expected_step(places, pace) {
    return Math.abs(places) <= 64 && Math.abs(pace) < 2 ** 42 ? places * pace : 0;
}

function decode_times(frames) {
    let scale = 1, dts = 0, step = 0, pts = 0, place = 0;
    for (let i = 0; i < frames.count; ++i) {
        if (frames.scale[i] !== scale) {
            scale = frames.scale[i];
            dts = step = pts = 0;
        }
        frames.dts[i] = optional(frames.dts[i], rest => rest + dts + step);
        if (!Number.isNaN(frames.dts[i])) {
            step = frames.dts[i] - dts;
            dts = frames.dts[i];
        }
        const now = Number.isNaN(frames.output[i]) ? place : frames.output[i];
        frames.pts[i] = optional(frames.pts[i], rest => rest + pts + expected_step(now - place, step));
        pts = Number.isNaN(frames.pts[i]) ? pts : frames.pts[i];
        place = now;
    }
}

/// What the packets of a container say, in its ticks; only frames that begin in one have an entry.
function decode_packets({ columns, tick }, frames) {
    if (tick === null)
        return;
    frames.tick = tick;
    let last = -1, count = 0;
    frames.packet = each_in_turn(decode_column(columns.packet, frames.count), n => optional(n, rest => last = rest + last + 1));
    for (let i = 0; i < frames.count; ++i)
        count += Number.isNaN(frames.packet[i]) ? 0 : 1;
    const spread = numbers => {
        let next = 0;
        return Float64Array.from(frames.packet, packet => Number.isNaN(packet) ? NaN : numbers[next++]);
    };
    frames.container_key = spread(decode_column(columns.container_key, count));
    frames.container_duration = spread(decode_column(columns.container_duration, count));
    frames.container_dts = spread(decode_column(columns.container_dts, count));
    frames.container_pts = spread(decode_column(columns.container_pts, count));
    let dts = 0, step = 0, pts = 0, place = 0;
    for (let i = 0; i < frames.count; ++i) {
        if (Number.isNaN(frames.packet[i]))
            continue;
        frames.container_dts[i] = optional(frames.container_dts[i], rest => rest + dts + step);
        if (!Number.isNaN(frames.container_dts[i])) {
            step = frames.container_dts[i] - dts;
            dts = frames.container_dts[i];
        }
        const now = Number.isNaN(frames.output[i]) ? place : frames.output[i];
        frames.container_pts[i] = optional(frames.container_pts[i], rest => rest + pts + expected_step(now - place, step));
        pts = Number.isNaN(frames.container_pts[i]) ? pts : frames.container_pts[i];
        place = now;
    }
}

/// The members that a container adds.
function packet_at(frames, i) {
    if (!frames.tick)
        return {};
    const [numerator, denominator] = frames.tick;
    const time = ticks => denominator === 0 ? null : fraction(ticks * numerator, denominator);
    const key = frames.container_key[i];
    return {
        packet: Number.isNaN(frames.packet[i]) ? null : frames.packet[i], container_key: key === 1 ? false : key === 2 ? true : null,
        container_pts: time(frames.container_pts[i]), container_dts: time(frames.container_dts[i]),
        container_duration: frames.container_duration[i] > 0 ? time(frames.container_duration[i]) : null,
    };
}

/// All columns as arrays; NaN where nothing is told. Times are in parts of a second, `scale` of them.
function decode_frames(data) {
    if (data.frames === null)
        return null;
    const { columns } = data.frames;
    const count = data.frame_count;
    const column = name => decode_column(columns[name], count);
    const frames = { count, kind: column("kind"), padding: column("padding"), filler: column("filler"), size: column("size"),
        scale: column("scale"), dts: column("dts"), pts: column("pts") };
    frames.kinds = data.frames.kinds.map(entry => read_kind(entry, data.frames));
    frames.picture = each_in_turn(column("picture"), (n, i) => i + unfold(n));
    frames.output = each_in_turn(column("output"), (n, i) => optional(n, rest => rest + i));
    frames.recovery = each_in_turn(column("recovery"), n => optional(n, rest => rest));
    frames.unit_bytes = each_in_turn(column("gap"), (n, i) => frames.size[i] - n);
    let end = 0;
    frames.offset = each_in_turn(column("offset"), (n, i) => {
        const offset = end + unfold(n);
        end = offset + frames.unit_bytes[i] + frames.padding[i];
        return offset;
    });
    let frame_num = 0, reference = false;
    frames.frame_num = each_in_turn(column("frame_num"), (n, i) => {
        const expected = frames.kinds[frames.kind[i]].idr ? 0 : frame_num + (reference ? 1 : 0);
        const number = optional(n, rest => rest + expected);
        frame_num = Number.isNaN(number) ? expected : number;
        reference = frames.kinds[frames.kind[i]].nal_ref_idc > 0;
        return number;
    });
    let place = 0, poc = 0;
    frames.poc = each_in_turn(column("poc"), (n, i) => {
        const now = Number.isNaN(frames.output[i]) ? place : frames.output[i];
        const expected = poc + 2 * (now - place);
        const number = optional(n, rest => rest + expected);
        poc = Number.isNaN(number) ? expected : number;
        place = now;
        return number;
    });
    decode_times(frames);
    decode_packets(data.frames, frames);
    frames.rounded_times = new Map(data.frames.rounded_times.map(([row, dts, pts]) => [row, { dts, pts }]));
    frames.type = new Uint8Array(count);
    frames.key = new Uint8Array(count);
    for (let i = 0; i < count; ++i) {
        const kind = frames.kinds[frames.kind[i]];
        frames.type[i] = kind.type;
        frames.key[i] = kind.idr || !Number.isNaN(frames.recovery[i]) ? 1 : 0;
    }
    return frames;
}

function greatest_divisor(a, b) {
    while (b !== 0)
        [a, b] = [b, a % b];
    return Math.abs(a);
}

function fraction(numerator, denominator) {
    if (Number.isNaN(numerator))
        return null;
    const divisor = greatest_divisor(numerator, denominator) || 1;
    return { numerator: numerator / divisor, denominator: denominator / divisor, value: numerator / denominator };
}

/// A time of a frame; without a numerator where a script has no number that is exact.
function time_of(frames, i, name) {
    const rounded = frames.rounded_times.get(i)?.[name] ?? null;
    return rounded === null ? fraction(frames[name][i], frames.scale[i]) : { numerator: null, denominator: null, value: rounded };
}

/// All that is told of a frame, with the names that `orv-h264 frames --json` has for it.
function frame_at(frames, i) {
    const kind = frames.kinds[frames.kind[i]];
    const number = value => Number.isNaN(value) ? null : value;
    return {
        number: i, picture: frames.picture[i], output_number: number(frames.output[i]), offset: frames.offset[i],
        size: frames.size[i], unit_bytes: frames.unit_bytes[i], padding: frames.padding[i], filler: frames.filler[i],
        key: frames.key[i] === 1, idr: kind.idr, recovery_frame_cnt: number(frames.recovery[i]),
        slice_types: kind.slice_types, structure: kind.structure, frame_num: number(frames.frame_num[i]),
        poc: number(frames.poc[i]), nal_ref_idc: kind.nal_ref_idc, pts: time_of(frames, i, "pts"),
        dts: time_of(frames, i, "dts"), time_source: kind.time_source, field_duration: kind.field_duration,
        duration: kind.duration ? fraction(...kind.duration) : null, pic_struct: kind.pic_struct, sps_id: kind.sps_id,
        pps_id: kind.pps_id, layers: kind.layers, coded_pictures: kind.coded_pictures,
        nal_unit_types: kind.units.flatMap(([type, count]) => new Array(count).fill(type)), cut: kind.cut, last: kind.last,
        ...packet_at(frames, i),
    };
}
