// The section of the coded picture buffer.
"use strict";

/// From removal to removal of a picture: the least and the most bits in the buffer.
function buffer_steps(buffer) {
    const steps = { starts: [], ends: [], values: [], most: [] };
    for (const [start, end, least, most] of buffer.stretches) {
        if (!(end > start))
            continue;
        steps.starts.push(start);
        steps.ends.push(end);
        steps.values.push(least);
        steps.most.push(most);
    }
    return steps;
}

function show_buffer(data) {
    const buffer = data.buffer;
    const steps = buffer ? buffer_steps(buffer) : { starts: [] };
    if (steps.starts.length === 0)
        return;
    by_id("buffer").hidden = false;
    const bits = number => `${count_text(number)} bits`;
    const least = steps.values.slice(1).reduce((low, value) => Math.min(low, value), Infinity);
    const most = steps.most.reduce((high, value) => Math.max(high, value), 0);
    const told = make("p", { class: "at-cursor" }), holder = make("div", { class: "plot-holder" });
    const body = by_id("buffer-body");
    body.append(holder);
    new step_plot({
        name: "buffer", label: "Bits in the coded picture buffer over time", holder, steps, told, least: 0.5,
        lines: [{ value: buffer.cpb_size, name: `CpbSize ${bits(buffer.cpb_size)}`, dash: [9, 3, 2, 3] }],
        x_text: seconds => time_text(Number(seconds.toFixed(3))), y_text: number => scaled_text(number, "bit"),
        step_text: (i, s) => `${time_text(Number(s.starts[i].toFixed(3)))} to ${time_text(Number(s.ends[i].toFixed(3)))}: ${bits(s.values[i])} to ${bits(s.most[i])}`,
    });
    const rows = [["Schedule", `${buffer.hrd} HRD, ${buffer.schedule}`], ["Bit rate", `${count_text(buffer.bit_rate)} bit/s${buffer.cbr ? ", constant" : ""}`],
        ["CpbSize", bits(buffer.cpb_size)], ["Most", bits(most)], ["Room left", bits(buffer.cpb_size - most)],
        ["Least, behind a removal", least === Infinity ? "" : bits(least)]];
    body.append(told, make("p", { class: "hint" }, "From the removal of one picture to the next, as the hypothetical reference decoder of Annex C has them" +
        (buffer.schedules > 1 ? `; further schedules: ${count_text(buffer.schedules - 1)}` : "") +
        (buffer.runs > 1 ? `; it begins anew ${count_text(buffer.runs - 1)} times, which follow one another here` : "") + "."),
        make_details("The buffer as a table", make_table("Coded picture buffer", [
            { head: "What", text: row => row[0], first: true }, { head: "Value", text: row => row[1], number: true }], rows)));
}
