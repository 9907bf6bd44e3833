// A plot of what goes on in steps: bit rates, durations.
"use strict";

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
