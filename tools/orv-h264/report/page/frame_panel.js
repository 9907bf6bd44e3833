// The section of frame sizes: choices, legend, plot, the frame at the cursor, and tables for who sees no plot.
"use strict";

function legend_entry(look, text) {
    return make("li", {}, make("span", { class: `swatch look-${look}`, "aria-hidden": "true" }), text);
}

function units_text(frame, names) {
    return frame.kinds_runs.map(([type, count, slice]) =>
        `${names[type]}${slice ? ` ${slice}` : ""}${count > 1 ? ` ×${count}` : ""}`).join(", ");
}

function layer_text(layer) {
    if (layer.dependency_id !== undefined)
        return `D${layer.dependency_id} Q${layer.quality_id} T${layer.temporal_id}`;
    return `view ${layer.view_id}${layer.depth ? " depth" : ""} T${layer.temporal_id}`;
}

function key_text(frame) {
    if (frame.idr)
        return "IDR picture";
    return frame.recovery_frame_cnt === null ? "no" : `recovery point, ${plural(frame.recovery_frame_cnt, "frame")} later`;
}

/// What the container says of the frame.
function container_facts(frame) {
    if (frame.packet === undefined)
        return [];
    if (frame.packet === null)
        return [["Packet", "begins in none of its own"]];
    const time = fraction => fraction === null ? "not told" : time_text(Number(fraction.value.toFixed(6)));
    return [
        ["Packet", `${count_text(frame.packet)}${frame.container_key === null ? "" : frame.container_key ? ", marked as key" : ", not marked as key"}`],
        ["Container shows it at", time(frame.container_pts)], ["Container decodes it at", time(frame.container_dts)],
    ];
}

/// Name and text of what a frame is.
function frame_facts(data, frames, number, marks) {
    const frame = frame_at(frames, number);
    const kind = frames.kinds[frames.kind[number]];
    frame.kinds_runs = kind.units;
    const time = fraction => fraction === null ? "not told" : `${time_text(fraction.value)}`;
    const fields = kind.told ? plural(frame.field_duration, "field") : "–";
    return [
        ["Frame", `${count_text(number)} (of 0 to ${count_text(frames.count - 1)})`],
        ["Output", frame.output_number === null ? "not output" : count_text(frame.output_number)],
        ["Type", frame.slice_types.join(", ") || "–"],
        ["Key", key_text(frame)],
        ["Size", `${count_text(frame.size)} bytes` + (frame.padding > 0 ? `, ${count_text(frame.padding)} of padding behind` : "") +
            (frame.filler > 0 ? `, ${count_text(frame.filler)} of filler` : "")],
        ["Offset", count_text(frame.offset)],
        ["frame_num", count_text(frame.frame_num)],
        ["Picture order count", frame.poc === null ? "–" : String(frame.poc)],
        ["nal_ref_idc", kind.told ? `${frame.nal_ref_idc}${frame.nal_ref_idc === 0 ? ", not for reference" : ""}` : "–"],
        ["Structure", frame.structure ?? "–"],
        ["Shown at", time(frame.pts)],
        ["Decoded at", time(frame.dts)],
        ["Shown for", frame.duration === null ? fields : `${time(frame.duration)}, ${fields}`],
        ["Time from", kind.told ? frame.time_source.replace("_", " ") : "–"],
        ["Parameter sets", kind.told ? `SPS ${frame.sps_id ?? "–"}, PPS ${frame.pps_id ?? "–"}` : "–"],
        ...container_facts(frame),
        ["Layers", frame.layers.length > 0 ? frame.layers.slice(0, 16).map(layer_text).join(", ") : null],
        ["Units", kind.told ? units_text(frame, data.unit_names) : "not kept: the stream has too many different lists"],
        ["State", [frame.cut ? "cut: longer than is kept" : "", ...(marks.get(number) ?? [])].filter(Boolean).join("; ") || null],
    ];
}

class frame_panel {
    constructor(data, frames, marks) {
        Object.assign(this, { data, frames, marks });
        this.source = frames ? new frame_source(frames) : new stretch_source(data);
        this.drawing = new size_drawing(this.source, marks);
        this.facts = make("dl", { class: "frame-facts" });
        this.list = make("div");
        const body = by_id("sizes-body");
        const holder = make("div", { class: "plot-holder" });
        body.append(this.top_line(), holder);
        this.plot = this.make_plot(holder);
        holder.append(this.drawing.canvas);
        this.drawing.draw_lanes(this.plot);
        body.append(usage_hint(), ...this.below());
        if (frames && frames.count > 0)
            this.show(0, false);
    }

    top_line() {
        const types = new Set(this.drawing.lanes.filter(lane => lane.name === "type").map(lane => lane.type));
        const legend = make("ul", { class: "legend", "aria-label": "Legend" },
            BEHIND_TO_FRONT.filter(type => types.has(type)).map(type =>
                legend_entry(TYPE_COLOURS[type], type === TYPE_NONE ? "no slice header" : `${TYPE_NAMES[type]} frames`)),
            make("li", {}, make("span", { class: "mark", "aria-hidden": "true" }, "▲"), "key frame"),
            this.drawing.lanes.some(lane => lane.label === "Ref") ? make("li", {}, "Ref: for reference") : null,
            make("li", {}, make("span", { class: "line-solid", "aria-hidden": "true" }), "mean, from afar"),
            make("li", {}, make("span", { class: "line-dotted", "aria-hidden": "true" }), "least, from afar"));
        const choices = this.frames ? make_choices("Order", { decoding: "decoding", output: "output" }, "decoding", value => this.set_order(value)) : null;
        return make("div", { class: "plot-head" }, choices, this.frames ? this.finder() : null, legend);
    }

    finder() {
        const input = make("input", { type: "number", min: 0, max: this.frames.count - 1, value: 0, id: "frame-number" });
        input.addEventListener("change", () => {
            const number = Math.max(0, Math.min(this.frames.count - 1, Math.round(Number(input.value) || 0)));
            this.go_to(number);
        });
        this.input = input;
        return make("label", { class: "finder" }, "Frame ", input);
    }

    make_plot(holder) {
        const { count } = this.source;
        return new wide_plot({
            name: "sizes", label: "Frame sizes", holder, from: -0.5, to: Math.max(count, 1) - 0.5, least: 8, height: 300,
            x_text: number => Number.isInteger(number) ? count_text(number) : "",
            y_text: number => scaled_text(number, "B"),
            y_range: (from, to) => [0, this.source.largest(from, to) * 1.08],
            draw: (plot, context) => this.drawing.draw(plot, context),
            below: plot => {
                this.drawing.draw_lanes(plot);
                this.list_later();
            },
            show: (x, by_key) => this.show(Math.round(x), by_key),
            move: (x, key) => this.move(Math.round(x), key),
        });
    }

    set_order(order) {
        const frame = this.shown;
        this.source.set_order(order === "output");
        this.plot.redraw();
        if (frame !== undefined)
            this.plot.point_at(this.source.place_of(frame), false);
    }

    move(place, key) {
        const last = this.source.count - 1;
        const steps = { ArrowLeft: -1, ArrowRight: 1, PageUp: -10, PageDown: 10 };
        if (key === "Home" || key === "End")
            return key === "Home" ? 0 : last;
        if (key in steps)
            return Math.max(0, Math.min(last, place + steps[key] * (this.frames ? 1 : this.source.each)));
        if ((key === "k" || key === "K") && this.frames) { // the key frame behind, or before
            const step = key === "k" ? 1 : -1;
            for (let next = place + step; next >= 0 && next <= last; next += step)
                if (this.frames.key[this.source.frame_of(next)])
                    return next;
        }
        return null;
    }

    /// The frame of that number at the cursor, wherever it is.
    go_to(number) {
        this.plot.point_at(this.source.place_of(number), true);
        by_id("sizes").scrollIntoView({ block: "start" });
    }

    show(place, by_key) {
        if (place < 0 || place >= this.source.count)
            return;
        if (!this.frames)
            return this.show_stretch(place, by_key);
        const number = this.source.frame_of(place);
        this.shown = number;
        const facts = frame_facts(this.data, this.frames, number, this.marks).filter(([, text]) => text !== null);
        this.facts.replaceChildren(...facts.map(([name, text]) =>
            make("div", { class: name === "Units" || name === "State" ? "wide" : null }, make("dt", {}, name), make("dd", {}, text))));
        this.input.value = number;
        if (by_key)
            tell(facts.slice(0, 5).concat(facts.filter(([name]) => name === "Units" || name === "State"))
                .map(([name, text]) => `${name} ${text}`).join(". "));
    }

    show_stretch(place, by_key) {
        const at = Math.min(this.source.list.length - 1, Math.floor(place / this.source.each));
        const [count, bytes, least, i, p, b, none, keys] = this.source.list[at];
        const first = at * this.source.each;
        const facts = [["Frames", `${count_text(first)} to ${count_text(first + count - 1)}`], ["Bytes", count_text(bytes)],
            ["Mean", bytes_text(Math.round(bytes / count))], ["Least", bytes_text(least)],
            ["Largest", [[i, "I"], [p, "P"], [b, "B"], [none, "–"]].filter(([size]) => size > 0).map(([size, name]) => `${name} ${bytes_text(size)}`).join(", ")],
            ["Key frames", count_text(keys)]];
        this.facts.replaceChildren(...facts.map(([name, text]) => make("div", {}, make("dt", {}, name), make("dd", {}, text))));
        if (by_key)
            tell(facts.map(([name, text]) => `${name} ${text}`).join(". "));
    }

    below() {
        const parts = [make("div", { class: "frame-box", role: "group", "aria-label": "The frame at the cursor" }, this.facts),
            make_details("Frame sizes by type, as a table", this.type_table())];
        if (this.frames) {
            this.listing = make_details("The frames in view, one by one", this.list);
            this.listing.addEventListener("toggle", () => this.list_frames());
            parts.push(this.listing);
        } else
            parts.unshift(make("p", { class: "note" }, `The stream has ${count_text(this.data.frame_count)} frames. This page holds no single ` +
                `frame${this.data.frame_count > this.data.most_frames ? ` of streams with more than ${count_text(this.data.most_frames)}` : ", since they are too unlike each other to find room"}: ` +
                `what is shown is of stretches of ${plural(this.source.each, "frame")}. orv-h264 frames lists each.`));
        return parts;
    }

    type_table() {
        const rows = new Map();
        for (const { type, pictures, bytes } of this.data.pictures) {
            const row = rows.get(type) ?? { type, pictures: 0, bytes: 0, least: Infinity, most: 0 };
            row.pictures += pictures;
            row.bytes += bytes;
            rows.set(type, row);
        }
        if (this.frames)
            for (let i = 0; i < this.frames.count; ++i) {
                const row = rows.get(["I", "P", "B", ""][this.frames.type[i]]) ?? {};
                row.least = Math.min(row.least, this.frames.size[i]);
                row.most = Math.max(row.most, this.frames.size[i]);
            }
        else
            for (const stretch of this.source.list)
                ["I", "P", "B", ""].forEach((name, type) => {
                    if (rows.has(name))
                        rows.get(name).most = Math.max(rows.get(name).most, stretch[3 + type]);
                });
        return make_table("Frame sizes by type", [
            { head: "Type", text: row => row.type || "no slice header", first: true },
            { head: "Frames", text: row => count_text(row.pictures), number: true },
            { head: "Bytes", text: row => count_text(row.bytes), number: true },
            { head: "Least", text: row => Number.isFinite(row.least) ? count_text(row.least) : "–", number: true },
            { head: "Mean", text: row => count_text(row.bytes / row.pictures), number: true },
            { head: "Largest", text: row => count_text(row.most), number: true },
        ], [...rows.values()]);
    }

    list_later() {
        clearTimeout(this.timer);
        this.timer = setTimeout(() => this.list_frames(), 150);
    }

    /// The table of the view, as far as it goes.
    list_frames() {
        const most = 200;
        if (!this.listing?.open)
            return;
        const [from, to] = this.plot.view;
        const first = Math.max(0, Math.ceil(from)), fence = Math.min(this.source.count, Math.ceil(to));
        const places = Array.from({ length: Math.min(most, fence - first) }, (_, i) => first + i);
        const rows = places.map(place => {
            const number = this.source.frame_of(place);
            const frame = frame_at(this.frames, number);
            frame.kinds_runs = this.frames.kinds[this.frames.kind[number]].units;
            return frame;
        });
        const column = (head, text, number = true) => ({ head, text, number });
        this.list.replaceChildren(make_table(`Frames ${count_text(first)} to ${count_text(first + rows.length - 1)} of the view` +
            (fence - first > most ? `, of ${count_text(fence - first)}: zoom in for the others` : ""), [
            { head: "Frame", text: f => count_text(f.number), first: true, number: true },
            column("Output", f => count_text(f.output_number)), column("Offset", f => count_text(f.offset)),
            column("Size", f => count_text(f.size)), column("Type", f => f.slice_types.join(",") || "–", false),
            column("Key", f => f.idr ? "IDR" : f.key ? `recovery ${f.recovery_frame_cnt}` : "–", false),
            column("Structure", f => f.structure ?? "–", false), column("frame_num", f => count_text(f.frame_num)),
            column("POC", f => f.poc === null ? "–" : String(f.poc)), column("Ref", f => f.nal_ref_idc ?? "–"),
            column("Shown at", f => f.pts === null ? "–" : time_text(f.pts.value)),
            { head: "Units", text: f => units_text(f, this.data.unit_names), class: "text" },
        ], rows));
    }
}
