// The sections of bit rates and of durations.
"use strict";

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
