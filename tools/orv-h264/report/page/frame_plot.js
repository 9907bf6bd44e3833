// Frame sizes: every frame a bar where there is room, else what the frames of a pixel column have at the least, in the
// mean, and at the most by type. Lanes below tell types and key frames without colour.
"use strict";

const LANE_COLOURS = { key: "key", flag: "flag", wrong: "bad" };
const BEHIND_TO_FRONT = [TYPE_I, TYPE_P, TYPE_B, TYPE_NONE];

/// Lanes of what only some of the frames are: for reference, of another structure than the others.
function flag_lanes(frames) {
    const lane = (label, holds) => {
        const of_kind = frames.kinds.map(kind => kind.told && holds(kind) ? 1 : 0);
        const flags = Uint8Array.from(frames.kind, kind => of_kind[kind]);
        const count = flags.reduce((sum, flag) => sum + flag, 0);
        return count > 0 && count < frames.count ? [{ name: "flag", label, flags }] : [];
    };
    const structures = { MBAFF: "MBAFF", fields: "Fields", top: "Top", bottom: "Bottom" };
    return [...lane("Ref", kind => kind.nal_ref_idc > 0),
        ...Object.entries(structures).flatMap(([structure, label]) => lane(label, kind => kind.structure === structure))];
}

/// The types that occur, key frames and frames with something wrong, a lane each.
function lanes_of(source, marks) {
    const lanes = [{ name: "key", label: "Key" }];
    const types = source.frames ? new Set(source.frames.type) :
        new Set(BEHIND_TO_FRONT.filter(type => source.list.some(stretch => stretch[3 + type] > 0)));
    for (const type of BEHIND_TO_FRONT)
        if (types.has(type))
            lanes.push({ name: "type", type, label: TYPE_NAMES[type] === "none" ? "–" : TYPE_NAMES[type] });
    if (source.frames)
        lanes.push(...flag_lanes(source.frames));
    if (marks.size > 0)
        lanes.push({ name: "wrong", label: "!" });
    return lanes;
}

class size_drawing {
    constructor(source, marks) {
        this.source = source;
        this.marks = marks; // frames with something wrong
        this.lanes = lanes_of(source, marks);
        this.canvas = make("canvas", { class: "lanes", "aria-hidden": "true" });
    }

    draw(plot, context) {
        const { left, top, width, height } = plot.plot.bbox;
        const [from, to] = plot.view;
        this.each = width / (to - from);
        this.near = this.each >= 2 * devicePixelRatio && this.source.frames !== undefined;
        const y_of = bytes => Math.round(plot.plot.valToPos(bytes, "y", true));
        const base = top + height;
        if (this.near)
            this.draw_frames(context, plot, y_of, base);
        else
            this.draw_columns(context, plot, y_of, base, left, Math.round(width));
    }

    draw_frames(context, plot, y_of, base) {
        const { size, type } = this.source.frames;
        const ratio = devicePixelRatio;
        const gap = this.each >= 4 * ratio ? Math.max(ratio, this.each * 0.12) : 0;
        const plain = TYPE_COLOURS.map(name => theme.colour(name));
        const text = theme.colour("text");
        context.font = `${11 * ratio}px system-ui, sans-serif`;
        context.textAlign = "center";
        context.textBaseline = "bottom";
        const fence = Math.min(this.source.count, Math.ceil(plot.view[1] + 0.5));
        for (let place = Math.max(0, Math.floor(plot.view[0])); place < fence; ++place) {
            const frame = this.source.frame_of(place);
            const middle = plot.plot.valToPos(place, "x", true);
            const y = Math.min(base - ratio, y_of(size[frame]));
            context.fillStyle = this.each >= 7 * ratio ? theme.pattern(context, type[frame]) : plain[type[frame]];
            context.fillRect(middle - this.each / 2 + gap / 2, y, this.each - gap, base - y);
            if (this.each >= 13 * ratio) {
                context.fillStyle = text;
                context.fillText(type[frame] === TYPE_NONE ? "–" : TYPE_NAMES[type[frame]], middle, y - 1 * ratio);
            }
        }
    }

    draw_columns(context, plot, y_of, base, left, width) {
        const sums = this.sums = new column_sums(width);
        this.source.fill(sums, ...plot.view);
        const colours = TYPE_COLOURS.map(name => theme.colour(name));
        const order = [...BEHIND_TO_FRONT];
        for (let column = 0; column < width; ++column) {
            order.sort((a, b) => sums.most[b][column] - sums.most[a][column]);
            for (const type of order) {
                const most = sums.most[type][column];
                if (most === 0)
                    break;
                const y = y_of(most);
                context.fillStyle = colours[type];
                context.fillRect(left + column, y, 1, base - y);
            }
        }
        this.draw_line(context, sums, column => y_of(sums.sum[column] / sums.count[column]), left, [], 2);
        this.draw_line(context, sums, column => y_of(sums.least[column]), left, [2, 3], 1.25);
    }

    draw_line(context, sums, y_at, left, dash, width) {
        const ratio = devicePixelRatio;
        for (const [colour, extra] of [["halo", 1.6], ["text", 0]]) {
            context.beginPath();
            for (let column = 0; column < sums.width; ++column)
                if (sums.count[column] > 0)
                    context.lineTo(left + column + 0.5, y_at(column));
            context.setLineDash(extra > 0 ? [] : dash.map(length => length * ratio));
            context.strokeStyle = theme.colour(colour);
            context.lineWidth = (width + extra) * ratio;
            context.stroke();
        }
        context.setLineDash([]);
    }

    /// The lanes below the plot.
    draw_lanes(plot) {
        const ratio = devicePixelRatio, lane_height = 13;
        const css_height = this.lanes.length * lane_height + 4;
        const css_width = plot.plot.width;
        this.canvas.width = Math.round(css_width * ratio);
        this.canvas.height = Math.round(css_height * ratio);
        this.canvas.style.width = `${css_width}px`;
        this.canvas.style.height = `${css_height}px`;
        const context = this.canvas.getContext("2d");
        context.font = `${11 * ratio}px system-ui, sans-serif`;
        context.textBaseline = "middle";
        this.lanes.forEach((lane, row) => {
            const y = (row * lane_height + 3) * ratio, height = (lane_height - 5) * ratio;
            context.textAlign = "right";
            context.fillStyle = theme.colour("axis");
            context.fillText(lane.label, plot.plot.bbox.left - 8 * ratio, y + height / 2);
            context.fillStyle = theme.colour("lane");
            context.fillRect(plot.plot.bbox.left, y, plot.plot.bbox.width, height);
            context.fillStyle = theme.colour(lane.name === "type" ? TYPE_COLOURS[lane.type] : LANE_COLOURS[lane.name]);
            if (this.near)
                this.fill_near(context, plot, lane, y, height);
            else
                this.fill_far(context, plot, lane, y, height);
            if (lane.name === "wrong")
                this.fill_marks(context, plot, y, height);
        });
    }

    fill_near(context, plot, lane, y, height) {
        const { type, key } = this.source.frames;
        const fence = Math.min(this.source.count, Math.ceil(plot.view[1] + 0.5));
        const width = Math.max(2 * devicePixelRatio, Math.min(this.each * 0.7, 12 * devicePixelRatio));
        const { left } = plot.plot.bbox, right = left + plot.plot.bbox.width;
        for (let place = Math.max(0, Math.floor(plot.view[0])); place < fence; ++place) {
            const frame = this.source.frame_of(place);
            const middle = plot.plot.valToPos(place, "x", true);
            if (middle < left || middle > right)
                continue;
            if ((lane.name === "type" && type[frame] === lane.type) || lane.flags?.[frame])
                context.fillRect(middle - width / 2, y, width, height);
            else if (lane.name === "key" && key[frame])
                fill_triangle(context, middle, y, height);
        }
    }

    fill_far(context, plot, lane, y, height) {
        if (lane.name === "wrong")
            return;
        const { left } = plot.plot.bbox;
        const filled = lane.name === "type" ? this.sums.most[lane.type] : lane.name === "key" ? this.sums.keys :
            this.source.flagged(lane.flags, this.sums.width, ...plot.view);
        for (let column = 0; column < this.sums.width; ++column)
            if (filled[column] > 0)
                context.fillRect(left + column, y, 1, height);
    }

    fill_marks(context, plot, y, height) {
        const { left } = plot.plot.bbox, right = left + plot.plot.bbox.width;
        for (const frame of this.marks.keys()) {
            const x = plot.plot.valToPos(this.source.frames ? this.source.place_of(frame) : frame, "x", true);
            if (x >= left && x <= right)
                fill_triangle(context, x, y, height);
        }
    }
}

function fill_triangle(context, x, y, height) {
    context.beginPath();
    context.moveTo(x, y);
    context.lineTo(x + height * 0.7, y + height);
    context.lineTo(x - height * 0.7, y + height);
    context.fill();
}
