// A plot over a long axis that zooms and pans: axes, cursor and selection by uPlot, drawn by who owns it. Works by mouse
// and by keyboard, and is drawn anew when colours or width change.
"use strict";

const plots = {}; // by name, those of the page

/// options: name, label (for a screen reader), holder, from, to and least (the narrowest view), height, x_text and y_text
/// (of an axis' number), y_range(from, to), draw(plot, context), show(x, by_key) when the cursor is at x, move(x, key): where
/// an arrow key leads to, and below(plot): drawn behind each drawing.
class wide_plot {
    constructor(options) {
        Object.assign(this, options);
        this.view = [this.from, this.to];
        this.frame = make("div", {
            class: "plot", tabindex: 0, role: "application", "aria-roledescription": "plot",
            "aria-label": `${this.label}. Arrow keys move, plus and minus zoom, 0 shows all.`,
        });
        this.tools = make("div", { class: "plot-tools", role: "group", "aria-label": "View of the plot" }, this.buttons());
        this.holder.append(this.tools, this.frame);
        this.plot = this.build();
        plots[this.name] = this;
        this.frame.addEventListener("keydown", event => this.key_pressed(event));
        this.frame.addEventListener("wheel", event => this.wheel_turned(event), { passive: false });
        new ResizeObserver(() => this.fit()).observe(this.holder);
        theme.follow(() => {
            this.fit();
            this.plot.redraw(false, true);
        });
        this.set_view(...this.view);
    }

    buttons() {
        const button = (text, title, action) => {
            const element = make("button", { type: "button", class: "small", title, "aria-label": title }, text);
            element.addEventListener("click", action);
            return element;
        };
        return [
            button("−", "Zoom out", () => this.zoom(2)), button("+", "Zoom in", () => this.zoom(0.5)),
            button("←", "Earlier", () => this.pan(-0.5)), button("→", "Later", () => this.pan(0.5)),
            button("All", "Show all", () => this.set_view(this.from, this.to)),
        ];
    }

    build() {
        const axis = (size, values) => ({
            size, values, stroke: () => theme.colour("axis"), font: "12px system-ui, sans-serif",
            grid: { stroke: () => theme.colour("grid"), width: 1 }, ticks: { stroke: () => theme.colour("grid"), width: 1, size: 5 },
        });
        const texts = of => (plot, splits) => splits.map(split => of(split));
        return new uPlot({
            width: this.width(), height: this.height, legend: { show: false }, padding: [8, 30, 0, 0],
            scales: { x: { time: false, auto: false, min: this.from, max: this.to }, y: { auto: false, min: 0, max: 1 } },
            axes: [{ ...axis(34, texts(this.x_text)), space: 80 }, { ...axis(76, texts(this.y_text)), space: 36 }],
            series: [{}, { paths: () => null, points: { show: false } }],
            cursor: {
                y: false, points: { show: false }, drag: { x: true, y: false, setScale: false },
                bind: {
                    dblclick: () => () => this.set_view(this.from, this.to),
                    mousedown: (plot, target, handler) => event => this.drag_begins(event) || handler(event),
                },
            },
            hooks: {
                draw: [plot => {
                    plot.ctx.save();
                    plot.ctx.beginPath();
                    plot.ctx.rect(plot.bbox.left, plot.bbox.top, plot.bbox.width, plot.bbox.height);
                    plot.ctx.clip();
                    this.draw(this, plot.ctx);
                    plot.ctx.restore();
                    this.below?.(this);
                }],
                setSelect: [plot => this.take_selection(plot)],
                setCursor: [plot => {
                    if (plot.cursor.left >= 0 && !this.placing)
                        this.show(this.at = plot.posToVal(plot.cursor.left, "x"), false);
                }],
            },
        }, [[this.from, this.to], [0, 1]], this.frame);
    }

    width() {
        return Math.max(280, Math.floor(theme.printing ? Math.min(680, this.holder.clientWidth) : this.holder.clientWidth));
    }

    fit() {
        if (this.width() !== this.plot.width) {
            this.plot.setSize({ width: this.width(), height: this.height });
            this.redraw();
        }
    }

    /// Shows this part of the axis, or as much of it as there is.
    set_view(from, to) {
        const whole = this.to - this.from;
        const span = Math.min(whole, Math.max(Math.min(this.least, whole), to - from));
        const middle = (from + to) / 2;
        const start = Math.max(this.from, Math.min(this.to - span, middle - span / 2));
        this.view = [start, start + span];
        this.redraw();
    }

    redraw() {
        const [low, high] = this.y_range(...this.view);
        this.plot.batch(() => {
            this.plot.setScale("x", { min: this.view[0], max: this.view[1] });
            this.plot.setScale("y", { min: low, max: high > low ? high : low + 1 });
        });
    }

    /// Makes the view so many times as wide; around `centre` where it is told, else around the cursor or the middle.
    zoom(factor, centre = null) {
        const [from, to] = this.view;
        const inside = this.at !== undefined && this.at >= from && this.at <= to;
        const fixed = centre ?? (inside ? this.at : (from + to) / 2);
        this.set_view(fixed - (fixed - from) * factor, fixed + (to - fixed) * factor);
    }

    pan(part) {
        const step = (this.view[1] - this.view[0]) * part;
        this.set_view(this.view[0] + step, this.view[1] + step);
    }

    take_selection(plot) {
        const { left, width } = plot.select;
        if (width < 4)
            return;
        const from = plot.posToVal(left, "x"), to = plot.posToVal(left + width, "x");
        plot.setSelect({ left: 0, width: 0, top: 0, height: 0 }, false);
        this.set_view(from, to);
    }

    /// With the shift key the plot is dragged along.
    drag_begins(event) {
        if (event.button !== 0 || !event.shiftKey)
            return false;
        const [from, to] = this.view;
        const each = (to - from) / (this.plot.bbox.width / devicePixelRatio);
        const move = later => this.set_view(from - (later.clientX - event.clientX) * each, to - (later.clientX - event.clientX) * each);
        document.addEventListener("mousemove", move);
        document.addEventListener("mouseup", () => document.removeEventListener("mousemove", move), { once: true });
        return true;
    }

    /// The page scrolls as ever, unless the plot has been clicked, or Ctrl is held.
    wheel_turned(event) {
        const sideways = event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY);
        if (!sideways && !event.ctrlKey && document.activeElement !== this.frame)
            return;
        event.preventDefault();
        if (sideways)
            this.pan((event.deltaX || event.deltaY) / 1000);
        else
            this.zoom(Math.exp(event.deltaY / 400), this.plot.posToVal(event.clientX - this.plot.over.getBoundingClientRect().left, "x"));
    }

    key_pressed(event) {
        if (event.altKey || event.ctrlKey || event.metaKey)
            return;
        const views = { "+": () => this.zoom(0.5), "=": () => this.zoom(0.5), "-": () => this.zoom(2), 0: () => this.set_view(this.from, this.to) };
        const action = views[event.key];
        const target = action ? null : this.move(this.at ?? this.view[0], event.key);
        if (!action && target === null)
            return;
        event.preventDefault();
        if (action)
            action();
        else
            this.point_at(target, true);
    }

    /// Puts the cursor there, and the view around it.
    point_at(x, by_key) {
        this.at = x;
        const [from, to] = this.view;
        if (x < from || x > to)
            this.set_view(x - (to - from) / 2, x + (to - from) / 2);
        this.placing = true;
        this.plot.setCursor({ left: this.plot.valToPos(x, "x"), top: 10 });
        this.placing = false;
        this.show(x, by_key);
    }
}

/// How a plot is used, once a page.
function usage_hint() {
    return make("p", { class: "hint" }, "Drag over a part to zoom into it; double-click shows all. Click a plot, and the wheel zooms; " +
        "Shift and dragging, or Shift and the wheel, move along. Keys: ← → step, + − zoom, 0 all, Home and End.");
}

/// Rows of choices of which one is on.
function make_choices(legend, names, chosen, choose) {
    const group = `choice-${legend.replace(/\W+/g, "-").toLowerCase()}`;
    return make("fieldset", { class: "choices" }, make("legend", {}, legend), Object.entries(names).map(([value, text]) => {
        const input = make("input", { type: "radio", name: group, value, checked: value === chosen });
        input.addEventListener("change", () => choose(value));
        return make("label", {}, input, text);
    }));
}
