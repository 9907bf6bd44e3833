// What every part of the page uses: elements, numbers as text, tables. Texts from the stream become text nodes, never
// markup.
"use strict";

/// An element with attributes and children; a child that is no node becomes text, null is left out.
function make(name, attributes = {}, ...children) {
    const element = document.createElement(name);
    for (const [key, value] of Object.entries(attributes))
        if (value !== null && value !== undefined && value !== false)
            element.setAttribute(key, value === true ? "" : value);
    for (const child of children.flat(Infinity))
        if (child !== null && child !== undefined)
            element.append(child);
    return element;
}

function by_id(id) {
    return document.getElementById(id);
}

const whole_number = new Intl.NumberFormat("en-US", { maximumFractionDigits: 0 });

/// 1234567 as "1,234,567"; what is not known as a dash.
function count_text(number) {
    return number === null || number === undefined || Number.isNaN(number) ? "–" : whole_number.format(number);
}

/// With so many significant digits and the unit that fits.
function scaled_text(number, unit, step = 1000, digits = 3) {
    const prefixes = step === 1024 ? ["", "Ki", "Mi", "Gi", "Ti", "Pi"] : ["", "k", "M", "G", "T", "P"];
    let power = 0;
    while (Math.abs(number) >= step * 0.9995 && power < prefixes.length - 1) {
        number /= step;
        ++power;
    }
    const whole = power === 0 && Number.isInteger(number);
    return `${whole ? number : Number(number.toPrecision(digits))} ${prefixes[power]}${unit}`;
}

function bytes_text(bytes) {
    return bytes < 10000 ? `${count_text(bytes)} bytes` : `${scaled_text(bytes, "B")}`;
}

function rate_text(bits) {
    return bits === null ? "–" : scaled_text(bits, "bit/s");
}

function share_text(part, whole) {
    if (!(whole > 0))
        return "–";
    const percent = 100 * part / whole;
    return percent > 0 && percent < 0.05 ? "< 0.1 %" : `${percent.toFixed(1)} %`;
}

/// Seconds as "1:02:03.400", or with their unit where they are few.
function time_text(seconds) {
    if (seconds === null || seconds === undefined || Number.isNaN(seconds))
        return "–";
    if (Math.abs(seconds) < 60)
        return `${Number(seconds.toFixed(6))} s`;
    const sign = seconds < 0 ? "−" : "";
    const milliseconds = Math.round(Math.abs(seconds) * 1000);
    const pad = (number, width) => String(number).padStart(width, "0");
    const minutes = Math.floor(milliseconds / 60000);
    const part = milliseconds % 1000;
    const rest = pad(Math.floor(milliseconds / 1000) % 60, 2) + (part === 0 ? "" : `.${pad(part, 3)}`);
    return sign + (minutes < 60 ? `${minutes}:${rest}` : `${Math.floor(minutes / 60)}:${pad(minutes % 60, 2)}:${rest}`);
}

/// "30000/1001" with its value where it is no whole number.
function hertz_text(ratio) {
    if (!ratio)
        return null;
    const value = Number(ratio.value.toPrecision(7));
    return ratio.denominator === 1 ? `${value} Hz` : `${value} Hz (${ratio.numerator}/${ratio.denominator})`;
}

function plural(count, one, many = one + "s") {
    return `${count_text(count)} ${count === 1 ? one : many}`;
}

/// A table. A column is {head, text: row => what the cell shows, number: it is aligned as one, first: it names the row}.
function make_table(caption, columns, rows) {
    const cell = (column, row) => {
        const attributes = { class: column.number ? "number" : column.class };
        return column.first ? make("th", { scope: "row", class: "name", ...(column.number ? attributes : {}) }, column.text(row))
            : make("td", attributes, column.text(row));
    };
    return make("div", { class: "table-frame", tabindex: 0, role: "region", "aria-label": caption },
        make("table", {},
            make("caption", {}, caption),
            make("thead", {}, make("tr", {}, columns.map(c =>
                make("th", { scope: "col", class: c.number ? "number" : null }, c.head)))),
            make("tbody", {}, rows.map(row => make("tr", {}, columns.map(column => cell(column, row)))))));
}

/// A part of a whole as a bar with a pattern; the text beside it says the same.
function make_bar(part, whole, look) {
    const filled = make("span", { class: `bar-fill look-${look}` });
    filled.style.width = whole > 0 ? `${Math.max(0, Math.min(100, 100 * part / whole))}%` : "0";
    return make("span", { class: "bar", "aria-hidden": "true" }, filled);
}

function make_details(summary, ...content) {
    return make("details", {}, make("summary", {}, summary), content);
}

/// Tells a screen reader.
function tell(text) {
    by_id("told").textContent = text;
}

function read_data() {
    return JSON.parse(by_id("data").textContent);
}
