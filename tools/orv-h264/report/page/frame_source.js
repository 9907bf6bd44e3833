// What a plot of frames draws: the frames in one of their orders, or stretches of them, summed up for pixel columns.
"use strict";

/// What a plot of frames asks: the frames in one order, or stretches of them where the page has no more.
class frame_source {
    constructor(frames) {
        this.frames = frames;
        this.count = frames.count;
        this.order = null; // decoding order
    }

    /// The frame at a place of the axis, and back.
    frame_of(place) {
        return this.order === null ? place : this.order[place];
    }
    place_of(frame) {
        return this.order === null ? frame : this.places[frame];
    }

    /// Frames without an output number stay behind the one that they are decoded after.
    set_order(by_output) {
        this.order = null;
        if (!by_output)
            return;
        const { output } = this.frames;
        const key = new Float64Array(this.count);
        let last = -1;
        for (let i = 0; i < this.count; ++i)
            key[i] = last = Number.isNaN(output[i]) ? last : output[i];
        this.order = Uint32Array.from(key.keys()).sort((a, b) => key[a] - key[b] || a - b);
        this.places = new Uint32Array(this.count);
        this.order.forEach((frame, place) => { this.places[frame] = place; });
    }

    /// Sums up [from, to) in as many columns as there are.
    fill(columns, from, to) {
        const { size, type, key } = this.frames;
        const each = (to - from) / columns.width;
        const first = Math.max(0, Math.ceil(from)), fence = Math.min(this.count, Math.ceil(to));
        for (let place = first; place < fence; ++place) {
            const frame = this.order === null ? place : this.order[place];
            const column = Math.min(columns.width - 1, Math.floor((place - from) / each));
            columns.add(column, type[frame], size[frame], size[frame], size[frame], 1, key[frame]);
        }
    }

    /// In which columns some frame has the flag.
    flagged(flags, width, from, to) {
        const columns = new Uint8Array(width);
        const each = (to - from) / width;
        for (let place = Math.max(0, Math.ceil(from)), fence = Math.min(this.count, Math.ceil(to)); place < fence; ++place)
            if (flags[this.order === null ? place : this.order[place]])
                columns[Math.min(width - 1, Math.floor((place - from) / each))] = 1;
        return columns;
    }

    largest(from, to) {
        const { size } = this.frames;
        let largest = 0;
        for (let place = Math.max(0, Math.ceil(from)), fence = Math.min(this.count, to); place < fence; ++place)
            largest = Math.max(largest, size[this.order === null ? place : this.order[place]]);
        return largest;
    }
}

/// Beyond the frames that a page holds.
class stretch_source {
    constructor(data) {
        this.list = data.stretches.frames;
        this.each = data.stretches.frames_each;
        this.count = data.frame_count;
        this.order = null;
    }

    stretches(from, to) {
        return [Math.max(0, Math.floor(from / this.each)), Math.min(this.list.length, Math.ceil(to / this.each))];
    }

    fill(columns, from, to) {
        const [first, fence] = this.stretches(from, to);
        for (let i = first; i < fence; ++i) {
            const [count, bytes, least, ...most] = this.list[i];
            const keys = most.pop();
            const start = Math.max(0, Math.floor((i * this.each - from) / (to - from) * columns.width));
            const end = Math.min(columns.width, Math.max(start + 1, Math.ceil(((i + 1) * this.each - from) / (to - from) * columns.width)));
            for (let column = start; column < end; ++column)
                most.forEach((size, type) => {
                    if (size > 0)
                        columns.add(column, type, size, least, bytes / count, count, keys);
                });
        }
    }

    largest(from, to) {
        const [first, fence] = this.stretches(from, to);
        return this.list.slice(first, fence).reduce((most, s) => Math.max(most, ...s.slice(3, 7)), 0);
    }
}

/// A pixel column each.
class column_sums {
    constructor(width) {
        this.width = width;
        this.most = [0, 1, 2, 3].map(() => new Float64Array(width));
        this.least = new Float64Array(width).fill(Infinity);
        this.sum = new Float64Array(width);
        this.count = new Float64Array(width);
        this.keys = new Float64Array(width);
    }

    add(column, type, most, least, mean, count, keys) {
        if (most > this.most[type][column])
            this.most[type][column] = most;
        if (least < this.least[column])
            this.least[column] = least;
        this.sum[column] += mean * count;
        this.count[column] += count;
        this.keys[column] += keys;
    }
}
