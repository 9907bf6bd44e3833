// What goes on in steps over time: the bit rate of seconds, half seconds or groups of pictures, and the durations of
// frames.
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

/// A plot of steps, with level lines {value, name, dash}. Where steps are narrower than pixels, the range of each pixel
/// column is drawn, and the mean in it.
class step_plot {
    constructor(options) {
        Object.assign(this, { lines: [], ...options });
        this.plot = new wide_plot({
            name: this.name, label: this.label, holder: this.holder, from: this.steps.starts[0], to: this.steps.ends.at(-1),
            least: this.least, height: 240, x_text: this.x_text, y_text: this.y_text,
            y_range: (from, to) => [0, this.largest(from, to) * 1.08],
            draw: (plot, context) => this.draw(plot.plot, context, plot.view),
            show: (x, by_key) => this.show(x, by_key),
            move: (x, key) => this.move(x, key),
        });
        this.show(this.steps.starts[0], false);
    }

    set_steps(steps) {
        this.steps = steps;
        this.plot.from = steps.starts[0];
        this.plot.to = steps.ends.at(-1);
        this.plot.set_view(...this.plot.view);
    }

    value_most(i) {
        return this.steps.most ? this.steps.most[i] : this.steps.values[i];
    }

    largest(from, to) {
        let largest = 0;
        for (let i = step_at(this.steps, from); i < this.steps.starts.length && this.steps.starts[i] < to; ++i)
            largest = Math.max(largest, this.value_most(i));
        for (const line of this.lines)
            if (line.value < 4 * largest) // one far above would press the steps flat
                largest = Math.max(largest, line.value);
        return largest;
    }

    draw(u, context, [from, to]) {
        const { starts, ends, values } = this.steps;
        const { left, top, width, height } = u.bbox;
        const base = top + height, columns = Math.round(width);
        const x_of = x => left + (x - from) / (to - from) * width;
        const y_of = value => u.valToPos(value, "y", true);
        const least = new Float64Array(columns).fill(Infinity), most = new Float64Array(columns), sum = new Float64Array(columns), weight = new Float64Array(columns);
        for (let i = step_at(this.steps, from); i < starts.length && starts[i] < to; ++i) {
            const first = Math.max(0, Math.floor(x_of(starts[i]) - left)), fence = Math.min(columns, Math.max(first + 1, Math.floor(x_of(ends[i]) - left)));
            for (let column = first; column < fence; ++column) {
                least[column] = Math.min(least[column], values[i]);
                most[column] = Math.max(most[column], this.value_most(i));
                sum[column] += values[i];
                ++weight[column];
            }
        }
        context.fillStyle = theme.colour("step-fill");
        for (let column = 0; column < columns; ++column)
            if (weight[column] > 0)
                context.fillRect(left + column, y_of(most[column]), 1, base - y_of(most[column]));
        context.fillStyle = theme.colour("step-range");
        for (let column = 0; column < columns; ++column)
            if (weight[column] > 0)
                context.fillRect(left + column, y_of(most[column]), 1, Math.max(devicePixelRatio, y_of(least[column]) - y_of(most[column])));
        context.beginPath();
        for (let column = 0; column < columns; ++column)
            if (weight[column] > 0)
                context.lineTo(left + column + 0.5, y_of(sum[column] / weight[column]));
        context.strokeStyle = theme.colour("step");
        context.lineWidth = 1.75 * devicePixelRatio;
        context.stroke();
        this.draw_lines(context, left, width, y_of);
    }

    /// Names stand above their lines, from the right, each beside the one before it.
    draw_lines(context, left, width, y_of) {
        const ratio = devicePixelRatio;
        context.font = `${11 * ratio}px system-ui, sans-serif`;
        context.textAlign = "right";
        context.textBaseline = "bottom";
        let right = left + width - 6 * ratio;
        for (const { value, name, dash } of this.lines) {
            const y = Math.round(y_of(value));
            context.beginPath();
            context.moveTo(left, y);
            context.lineTo(left + width, y);
            context.setLineDash(dash.map(length => length * ratio));
            context.strokeStyle = theme.colour("text");
            context.lineWidth = 1.25 * ratio;
            context.stroke();
            context.setLineDash([]);
            const text_width = context.measureText(name).width;
            context.lineWidth = 3 * ratio;
            context.strokeStyle = theme.colour("halo");
            context.strokeText(name, right, y - 2 * ratio);
            context.fillStyle = theme.colour("text");
            context.fillText(name, right, y - 2 * ratio);
            right -= text_width + 14 * ratio;
        }
    }

    show(x, by_key) {
        const i = step_at(this.steps, x);
        if (i >= this.steps.starts.length)
            return;
        const text = this.step_text(i, this.steps);
        this.told.textContent = text;
        if (by_key)
            tell(text);
    }

    move(x, key) {
        const last = this.steps.starts.length - 1;
        const at = Math.min(last, step_at(this.steps, x));
        const targets = { ArrowLeft: at - 1, ArrowRight: at + 1, PageUp: at - 10, PageDown: at + 10, Home: 0, End: last };
        if (!(key in targets))
            return null;
        const to = Math.max(0, Math.min(last, targets[key]));
        return (this.steps.starts[to] + this.steps.ends[to]) / 2;
    }
}

/// The bit rates that the HRD of the stream promises, each once.
function hrd_lines(info) {
    const rates = new Map();
    for (const sequence of info.sequences)
        for (const [kind, schedules] of [["NAL HRD", sequence.nal_hrd], ["VCL HRD", sequence.vcl_hrd]])
            for (const schedule of schedules ?? [])
                rates.set(`${kind} ${schedule.bit_rate}`, { value: schedule.bit_rate, name: `${kind} ${rate_text(schedule.bit_rate)}`, dash: [9, 3, 2, 3] });
    return [...rates.values()].slice(0, 6);
}

function rate_table(steps, lines) {
    const whole = steps.values.slice(0, steps.whole);
    const sorted = Float64Array.from(whole).sort();
    const at = part => sorted.length > 0 ? sorted[Math.min(sorted.length - 1, Math.floor(part * sorted.length))] : null;
    const rows = [["Stretches", count_text(steps.whole)], ["Least", rate_text(at(0))], ["A tenth is below", rate_text(at(0.1))],
        ["Median", rate_text(at(0.5))], ["A tenth is above", rate_text(at(0.9))], ["Most", rate_text(at(1))],
        ...lines.map(line => [line.name.replace(/ [\d.].*$/, "") + (line.name.includes("HRD") ? " bit rate" : " of the stream"), `${count_text(line.value)} bit/s`])];
    return make_table("Bit rates", [{ head: "What", text: row => row[0], first: true }, { head: "Value", text: row => row[1], number: true }], rows);
}

function show_rates(data, frames) {
    const body = by_id("rate-body");
    const { frames: totals } = data.info;
    if (totals.mean_bit_rate === null || (!frames && data.stretches.seconds.length === 0)) {
        body.append(make("p", { class: "note" }, "The stream does not tell how long its frames are shown, so it has no bit rate."));
        return;
    }
    const ways = frames ? {
        second: ["one second", () => rates_of_seconds(frames, 1)],
        half: ["half a second", () => rates_of_seconds(frames, 0.5)],
        group: ["a group of pictures", () => rates_of_groups(frames)],
    } : { second: ["seconds", () => rates_of_stretches(data.stretches)] };
    const lines = [{ value: totals.mean_bit_rate, name: `mean ${rate_text(totals.mean_bit_rate)}`, dash: [6, 4] }, ...hrd_lines(data.info)];
    if (totals.peak_bit_rate !== null)
        lines.push({ value: totals.peak_bit_rate, name: `peak of a second ${rate_text(totals.peak_bit_rate)}`, dash: [2, 3] });
    const steps = ways.second[1]();
    const told = make("p", { class: "at-cursor" }), table = make("div", {}, rate_table(steps, lines));
    const holder = make("div", { class: "plot-holder" });
    const choose = way => {
        const chosen = ways[way][1]();
        plot.set_steps(chosen);
        table.replaceChildren(rate_table(chosen, lines));
    };
    body.append(make("div", { class: "plot-head" }, frames ? make_choices("Over", Object.fromEntries(
        Object.entries(ways).map(([value, [text]]) => [value, text])), "second", choose) : null), holder);
    const plot = new step_plot({
        name: "rate", label: "Bit rate over time", holder, steps, lines, told, least: 0.5,
        x_text: seconds => time_text(Number(seconds.toFixed(3))), y_text: bits => scaled_text(bits, "bit/s"),
        step_text: (i, s) => `${time_text(Number(s.starts[i].toFixed(3)))} to ${time_text(Number(s.ends[i].toFixed(3)))}: ${rate_text(s.values[i])}` +
            (s.most ? `, at most ${rate_text(s.most[i])} in a second` : ""),
    });
    body.append(told, make("p", { class: "hint" }, "In decoding order; the bits of a frame are spread over its duration, with the padding behind it."),
        make_details("Bit rates as a table", table));
}

/// Durations, where there are several.
function show_durations(data, frames) {
    if (!frames)
        return;
    const counts = new Map();
    for (const kind of frames.kind) {
        const { seconds, field_duration } = frames.kinds[kind];
        if (!Number.isNaN(seconds))
            counts.set(seconds, { seconds, fields: field_duration, frames: (counts.get(seconds)?.frames ?? 0) + 1 });
    }
    if (counts.size < 2)
        return;
    by_id("durations").hidden = false;
    const milliseconds = seconds => `${Number((seconds * 1000).toFixed(3))} ms`;
    const values = Float64Array.from(frames.kind, kind => frames.kinds[kind].seconds || 0);
    const steps = { starts: Float64Array.from(values, (_, i) => i - 0.5), ends: Float64Array.from(values, (_, i) => i + 0.5), values };
    const told = make("p", { class: "at-cursor" }), holder = make("div", { class: "plot-holder" });
    const body = by_id("durations-body");
    body.append(holder);
    new step_plot({
        name: "durations", label: "Durations of frames in decoding order", holder, steps, told, least: 8,
        x_text: number => Number.isInteger(number) ? count_text(number) : "", y_text: milliseconds,
        step_text: i => `Frame ${count_text(i)}: ${values[i] > 0 ? milliseconds(values[i]) : "not told"}, ${plural(frames.kinds[frames.kind[i]].field_duration ?? 0, "field")}`,
    });
    const rows = [...counts.values()].sort((a, b) => b.frames - a.frames);
    body.append(told, make("p", { class: "hint" }, "Frames in decoding order."),
        make_details("Durations as a table", make_table("Durations", [
            { head: "Duration", text: row => milliseconds(row.seconds), first: true },
            { head: "Fields", text: row => count_text(row.fields), number: true },
            { head: "Frames", text: row => count_text(row.frames), number: true },
        ], rows.slice(0, 100))));
}
