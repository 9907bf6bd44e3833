// What needs no plot: structure and reference use, shares of bytes, parameter sets and SEI messages.
"use strict";

function show_structure(data) {
    const body = by_id("structure-body");
    const all = data.pictures.reduce((sum, row) => sum + row.pictures, 0);
    if (all === 0) {
        body.append(make("p", { class: "note" }, "The stream has no picture."));
        return;
    }
    const names = { frame: "Frame", MBAFF: "Frame, MBAFF", top: "Top field alone", bottom: "Bottom field alone", fields: "Two fields" };
    const look = row => row.type === "" ? "type-none" : `type-${row.type.toLowerCase()}`;
    body.append(make_table("Pictures by structure, type and reference use", [
        { head: "Structure", text: row => names[row.structure], first: true },
        { head: "Type", text: row => row.type || "no slice header" },
        { head: "For reference", text: row => row.nal_ref_idc > 0 ? `yes, nal_ref_idc ${row.nal_ref_idc}` : "no" },
        { head: "Pictures", text: row => count_text(row.pictures), number: true },
        { head: "Share", text: row => [make_bar(row.pictures, all, look(row)), share_text(row.pictures, all)], class: "share" },
        { head: "Mean size", text: row => bytes_text(Math.round(row.bytes / row.pictures)), number: true },
    ], data.pictures));
    show_layers(data, body);
}

function show_layers(data, body) {
    const { layers, further_layer_units } = data.info;
    if (layers.length === 0)
        return;
    const all = layers.reduce((sum, layer) => sum + layer.bytes, 0);
    const name = layer => layer.view_id === null ? `D${layer.dependency_id} Q${layer.quality_id} T${layer.temporal_id}` :
        `view ${layer.view_id}${layer.depth ? ", depth" : ""}`;
    const what = layer => [layer.profile, layer.level && `level ${layer.level}`, size_text(layer.size), hertz_text(layer.frame_rate)].filter(Boolean).join(", ");
    body.append(make_table("Layers and views (D dependency, Q quality, T temporal)", [
        { head: "Layer", text: row => name(row.layer), first: true },
        { head: "Pictures", text: row => count_text(row.layer.pictures), number: true },
        { head: "For reference", text: row => count_text(row.references), number: true },
        { head: "Units", text: row => count_text(row.layer.units), number: true },
        { head: "Bytes", text: row => count_text(row.layer.bytes), number: true },
        { head: "Share", text: row => [make_bar(row.layer.bytes, all, "plain"), share_text(row.layer.bytes, all)], class: "share" },
        { head: "Bit rate", text: row => rate_text(row.layer.bit_rate), number: true },
        { head: "What it is", text: row => what(row.layer) || "–", class: "text" },
    ], layers.map((layer, i) => ({ layer, references: data.layer_references[i] }))));
    if (further_layer_units > 0)
        body.append(make("p", { class: "note" }, `${plural(further_layer_units, "unit")} of further layers not shown.`));
}

function show_shares(data) {
    const { info } = data;
    const body = by_id("shares-body");
    const units = info.nal_units.reduce((sum, type) => sum + type.bytes, 0);
    const slices = data.slices.reduce((sum, type) => sum + type.bytes, 0);
    const rows = info.nal_units.map(type => ({ ...type, look: "plain" }));
    const outside = info.size - units;
    if (outside > 0)
        rows.push({ nal_unit_type: "–", name: "outside of units", units: null, bytes: outside, look: "plain" });
    const columns = whole => [
        { head: "Units", text: row => count_text(row.units), number: true },
        { head: "Bytes", text: row => count_text(row.bytes), number: true },
        { head: "Share", text: row => [make_bar(row.bytes, whole, row.look), share_text(row.bytes, whole)], class: "share" },
    ];
    const looks = { I: "type-i", SI: "type-i", P: "type-p", SP: "type-p", B: "type-b" };
    body.append(make("div", { class: "side-by-side" },
        make_table("By NAL unit type, framing included", [
            { head: "Type", text: row => `${row.nal_unit_type} ${row.name.replace(/, \w+\(\)$/, "")}`, first: true }, ...columns(info.size)], rows),
        data.slices.length === 0 ? null : make_table("By slice type, primary slices without framing", [
            { head: "Slices", text: row => row.type, first: true }, ...columns(slices)], data.slices.map(s => ({ ...s, look: looks[s.type] })))));
}

/// The elements of a unit or message, indented by structure.
function element_table(caption, rows) {
    const outermost = Math.min(...rows.map(([depth]) => depth));
    return make("div", { class: "table-frame", tabindex: 0, role: "region", "aria-label": caption },
        make("table", { class: "elements" }, make("thead", {}, make("tr", {},
            ["Element", "Value", "Meaning", "Byte"].map((head, i) => make("th", { scope: "col", class: i === 3 ? "number" : null }, head)))),
            make("tbody", {}, rows.map(([depth, name, value, words, byte]) => {
                const indented = make("span", {}, name === "=" ? "follows" : name);
                indented.style.paddingLeft = `${Math.min(12, depth - outermost) * 1.1}em`;
                if (value === undefined)
                    return make("tr", { class: "structure" }, make("th", { scope: "rowgroup", colspan: 4 }, indented));
                if (name === "=")
                    return make("tr", { class: "follows" }, make("th", { scope: "row" }, indented), make("td", { colspan: 3 }, value));
                return make("tr", {}, make("th", { scope: "row" }, indented), make("td", { class: "value" }, value),
                    make("td", {}, words), make("td", { class: "number" }, count_text(byte)));
            }))));
}

function set_title(set) {
    const id = set.rows.find(([, name]) => name === "seq_parameter_set_id" || name === "pic_parameter_set_id");
    const times = set.count > 1 ? `, ${count_text(set.count)} times` : "";
    const own = set.name.includes("PPS") ? set.rows.find(([, name]) => name === "pic_parameter_set_id") : id;
    return `${set.name}${own ? ` ${own[2]}` : ""}: ${count_text(set.size)} bytes, ${set.in_record ? "in the record" : `first at byte ${count_text(set.offset)}`}${times}`;
}

function show_sets(data) {
    const body = by_id("sets-body");
    if (data.parameter_sets.length === 0)
        body.append(make("p", { class: "note" }, "The stream has no parameter set."));
    for (const set of data.parameter_sets)
        body.append(make_details(set_title(set), element_table(set_title(set), set.rows)));
    if (data.further_parameter_sets > 0)
        body.append(make("p", { class: "note" }, `${plural(data.further_parameter_sets, "further one")} not shown: orv-h264 inspect --only sps,pps shows all.`));
}

function show_messages(data) {
    const body = by_id("sei-body");
    const { info } = data;
    if (info.sei.length === 0) {
        body.append(make("p", { class: "note" }, "The stream has no SEI message that could be read."));
        return;
    }
    const all = info.sei.reduce((sum, type) => sum + type.messages, 0);
    body.append(make_table("SEI messages by payload type", [
        { head: "Type", text: type => type.payload_type, number: true },
        { head: "Payload", text: type => type.name ?? "–", first: true },
        { head: "Messages", text: type => count_text(type.messages), number: true },
        { head: "Share", text: type => [make_bar(type.messages, all, "plain"), share_text(type.messages, all)], class: "share" },
    ], info.sei));
    if (data.messages.length > 0)
        body.append(make("h3", {}, "The first of each"));
    for (const message of data.messages) {
        const title = `${message.payload || "payload"} (type ${message.payload_type}), in the SEI unit at byte ${count_text(message.offset)}`;
        body.append(make_details(title, element_table(title, message.rows)));
    }
    if (info.further_sei_messages + info.sei_units_not_read > 0)
        body.append(make("p", { class: "note" }, `${plural(info.further_sei_messages, "message")} of further types and ` +
            `${plural(info.sei_units_not_read, "SEI unit")} are not among them.`));
}
