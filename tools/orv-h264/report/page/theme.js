// Light and dark: as the system has it, until the reader chooses. Plots are drawn with the colours of the style sheet, and
// have patterns beside them.
"use strict";

const theme = {
    dark: matchMedia("(prefers-color-scheme: dark)").matches,
    chosen: false,
    printing: false,
    listeners: [],

    /// Calls it whenever the colours change.
    follow(listener) {
        this.listeners.push(listener);
    },
    apply() {
        const dark = this.dark && !this.printing;
        document.documentElement.dataset.theme = dark ? "dark" : "light";
        by_id("theme").textContent = this.dark ? "Light colours" : "Dark colours";
        this.patterns.clear();
        this.colours.clear();
        for (const listener of this.listeners)
            listener();
    },
    /// A colour of the style sheet by its name. Asking the style sheet takes longer than drawing does.
    colour(name) {
        if (!this.colours.has(name))
            this.colours.set(name, getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim());
        return this.colours.get(name);
    },
    colours: new Map(),
    patterns: new Map(),

    /// What frames of a type are filled with where there is room for a pattern: I plain, P hatched, B dotted.
    pattern(context, type) {
        if (!this.patterns.has(type))
            this.patterns.set(type, make_pattern(context, type));
        return this.patterns.get(type);
    },
};

const TYPE_COLOURS = ["type-i", "type-p", "type-b", "type-none"];

function make_pattern(context, type) {
    const ratio = devicePixelRatio || 1;
    const size = Math.round(6 * ratio);
    const tile = make("canvas", { width: size, height: size });
    const draw = tile.getContext("2d");
    draw.fillStyle = theme.colour(TYPE_COLOURS[type]);
    draw.fillRect(0, 0, size, size);
    draw.strokeStyle = draw.fillStyle = theme.colour("pattern");
    draw.lineWidth = ratio;
    if (type === TYPE_P) {
        for (const shift of [-size, 0, size]) {
            draw.beginPath();
            draw.moveTo(shift, size);
            draw.lineTo(shift + size, 0);
            draw.stroke();
        }
    } else if (type === TYPE_B) {
        draw.beginPath();
        draw.arc(size / 2, size / 2, 1.1 * ratio, 0, 7);
        draw.fill();
    } else if (type === TYPE_NONE) {
        draw.fillRect(0, Math.floor(size / 2), size, Math.ceil(ratio));
    }
    return context.createPattern(tile, "repeat");
}

function start_theme() {
    by_id("theme").addEventListener("click", () => {
        theme.dark = !theme.dark;
        theme.chosen = true;
        theme.apply();
    });
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", event => {
        if (!theme.chosen) {
            theme.dark = event.matches;
            theme.apply();
        }
    });
    const print = on => {
        theme.printing = on;
        theme.apply();
    };
    addEventListener("beforeprint", () => print(true));
    addEventListener("afterprint", () => print(false));
    theme.apply();
}
