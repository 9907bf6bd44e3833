// The bits a second of seconds, half seconds or groups of pictures, as steps: {starts, ends, values}, and `whole`, how many
// of them are no rest at the end.
"use strict";

/// Durations as whole numbers of one part of a second, so that they add up exactly; or as seconds where that fails.
function duration_ticks(frames) {
    let parts = 1;
    for (const kind of frames.kinds)
        if (kind.duration)
            parts = parts / greatest_divisor(parts, kind.duration[1]) * kind.duration[1];
    const exact = parts < 2 ** 40;
    return {
        parts: exact ? parts : 1,
        of_kind: frames.kinds.map(kind => kind.duration ? kind.duration[0] * (exact ? parts : 1) / kind.duration[1] : 0),
    };
}

/// Steps {starts, ends, values}: the bits a second of each stretch of so many seconds. The bits of a frame, with the padding
/// behind it, are spread over its duration; one without a duration counts for nothing. The last stretch may be shorter.
function rates_of_seconds(frames, seconds) {
    const ticks = duration_ticks(frames);
    const total = frames.kind.reduce((sum, kind) => sum + ticks.of_kind[kind], 0) / ticks.parts;
    while (total / seconds > 600000) // an hour a frame, for one
        seconds *= 2;
    const each = ticks.parts * seconds;
    const steps = { starts: [], ends: [], values: [], seconds, whole: 0 };
    const push = (start, end, bits) => {
        steps.starts.push(start / ticks.parts);
        steps.ends.push(end / ticks.parts);
        steps.values.push(bits * ticks.parts / (end - start));
    };
    let time = 0, bits = 0, edge = each;
    for (let i = 0; i < frames.count; ++i) {
        const duration = ticks.of_kind[frames.kind[i]];
        if (!(duration > 0))
            continue;
        const all = 8 * (frames.unit_bytes[i] + frames.padding[i]);
        let start = time;
        time += duration;
        while (time >= edge) {
            push(edge - each, edge, bits + all * (edge - start) / duration);
            start = edge;
            edge += each;
            bits = 0;
        }
        bits += all * (time - start) / duration;
    }
    steps.whole = steps.values.length;
    if (time > edge - each)
        push(edge - each, time, bits);
    return steps;
}

/// Likewise, from each key frame up to the next one.
function rates_of_groups(frames) {
    const ticks = duration_ticks(frames);
    const steps = { starts: [], ends: [], values: [], whole: 0 };
    let time = 0, start = 0, bits = 0;
    const end_group = () => {
        if (time > start) {
            steps.starts.push(start / ticks.parts);
            steps.ends.push(time / ticks.parts);
            steps.values.push(bits * ticks.parts / (time - start));
        }
        start = time;
        bits = 0;
    };
    for (let i = 0; i < frames.count; ++i) {
        const duration = ticks.of_kind[frames.kind[i]];
        if (frames.key[i])
            end_group();
        if (duration > 0) {
            time += duration;
            bits += 8 * (frames.unit_bytes[i] + frames.padding[i]);
        }
    }
    end_group();
    steps.whole = steps.values.length;
    return steps;
}

function rates_of_stretches(stretches) {
    const steps = { starts: [], ends: [], values: [], most: [], whole: stretches.seconds.length };
    let time = 0;
    for (const [count, bits, most] of stretches.seconds) {
        steps.starts.push(time);
        steps.ends.push(time += count);
        steps.values.push(bits / count);
        steps.most.push(most);
    }
    return steps;
}

/// The first step that ends behind x.
function step_at(steps, x) {
    let low = 0, high = steps.ends.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        if (steps.ends[middle] > x)
            high = middle;
        else
            low = middle + 1;
    }
    return low;
}
