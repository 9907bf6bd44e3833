// The summary, as `orv-h264 info` has it, and what is wrong.
"use strict";

function size_text(size) {
    return size ? `${size.width}×${size.height}` : null;
}

function named(name, number) {
    return name ?? `unknown (${number})`;
}

function hrd_texts(schedules) {
    return (schedules ?? []).map(s =>
        `${rate_text(s.bit_rate)}${s.cbr ? " constant" : " at most"}, buffer of ${scaled_text(s.cpb_size, "bit")}` +
        (s.seconds > 0 ? `; ${count_text(s.seconds_above)} of ${plural(s.seconds, "second")} above, the fullest ` +
            scaled_text(s.fullest_second, "bit") : ""));
}

function colour_text(colour) {
    if (!colour)
        return null;
    const range = colour.full_range ? "full range" : "limited range";
    if (colour.colour_primaries === null)
        return range;
    return `${range}; primaries ${named(colour.primaries, colour.colour_primaries)}; transfer ` +
        `${named(colour.transfer, colour.transfer_characteristics)}; matrix ${named(colour.matrix, colour.matrix_coefficients)}`;
}

function scan_text(s) {
    const fields = s.field_pictures > 0 ?
        ` (${count_text(s.field_pictures)} coded fields, ${count_text(s.frame_pictures + s.mbaff_pictures)} coded frames)` : "";
    const first = s.top_field_first === null || s.scan_type === "progressive" ? "" :
        s.top_field_first ? ", top field first" : ", bottom field first";
    return s.scan_type + first + fields;
}

/// Name and text of each fact of a sequence; null where there is none.
function sequence_facts(s) {
    const ratio = s.sample_aspect_ratio;
    const depth = s.bit_depth_luma === s.bit_depth_chroma || s.chroma_format_idc === 0 ? `${s.bit_depth_luma} bits` :
        `${s.bit_depth_luma} bits luma, ${s.bit_depth_chroma} bits chroma`;
    return [
        ["Codec string", s.codec],
        ["Profile", named(s.profile, s.profile_idc)],
        ["Level", s.level],
        ["Picture size", `${size_text(s.size)} (coded ${size_text(s.coded_size)})`],
        ["Sample aspect ratio", ratio ? `${ratio.numerator}:${ratio.denominator}` : null],
        ["Display size", size_text(s.display_size)],
        ["Chroma format", named(s.chroma_format, s.chroma_format_idc)],
        ["Bit depth", depth],
        ["Scan type", scan_text(s)],
        ["Entropy coding", [s.cabac ? "CABAC" : "", s.cavlc ? "CAVLC" : ""].filter(Boolean).join(" and ") || null],
        ["Reference frames", count_text(s.max_num_ref_frames)],
        ["Reorder depth", `${s.reorder_depth} used, ${s.max_num_reorder_frames} ` +
            (s.max_num_reorder_frames_sent ? "promised" : "inferred")],
        ["Field rate", hertz_text(s.field_rate)],
        ["Frame rate", s.frame_rate ? hertz_text(s.frame_rate) + (s.fixed_frame_rate ? ", fixed" : ", not fixed") : null],
        ["Colour", colour_text(s.colour)],
        ...hrd_texts(s.nal_hrd).map(text => ["NAL HRD", text]),
        ...hrd_texts(s.vcl_hrd).map(text => ["VCL HRD", text]),
    ];
}

function stream_facts(data) {
    const { info } = data;
    const { frames, groups } = info;
    const timed = frames.timed_frames < frames.count ?
        `, that of ${count_text(frames.timed_frames)} of the ${count_text(frames.count)} frames` : "";
    const padding = frames.padding > 0 ? ` (${rate_text(frames.unit_bit_rate)} without padding)` : "";
    const distance = frames.key_frame_distance;
    const all_groups = groups.closed + groups.open + groups.gradual;
    return [
        ["File", info.file],
        ["Framing", info.framing + (data.framing_recognised ? ", recognised" : "")],
        ["Size", `${count_text(info.size)} bytes` + (info.container ? " of the track" : "")],
        ["Duration", frames.seconds === null ? null : time_text(frames.seconds) + timed],
        ["Bit rate", frames.mean_bit_rate === null ? null : `mean ${rate_text(frames.mean_bit_rate)}${padding}` +
            (frames.peak_bit_rate === null ? "" : `, peak ${rate_text(frames.peak_bit_rate)}`)],
        ["Frames", `${count_text(frames.pictures)}, ${count_text(frames.key_frames)} of them key frames`],
        ["Key-frame distance", distance ? `${count_text(distance.min)} to ${plural(distance.max, "frame")}, mean ` +
            Number(distance.mean.toPrecision(4)) : null],
        ["Groups", all_groups === 0 ? null : `${count_text(groups.closed)} closed, ${count_text(groups.open)} open` +
            (groups.gradual > 0 ? `, ${count_text(groups.gradual)} from a gradual refresh` : "")],
        ["Recovery points", groups.recovery_points === 0 ? null : `${count_text(groups.recovery_points)}, ` +
            `recovery_frame_cnt ${groups.recovery_frame_cnt_min} to ${groups.recovery_frame_cnt_max}`],
        ["Padding", frames.padding > 0 ? `${count_text(frames.padding)} bytes` : null],
        ["Filler", frames.filler > 0 ? `${count_text(frames.filler)} bytes` : null],
        ["Encoder", info.encoder],
    ];
}

function fact_table(caption, facts) {
    const rows = facts.filter(([, text]) => text !== null && text !== undefined);
    return make("div", { class: "table-frame" }, make("table", { class: "facts" }, make("caption", {}, caption),
        make("tbody", {}, rows.map(([name, text]) => make("tr", {}, make("th", { scope: "row" }, name), make("td", {}, text))))));
}

function show_card(name, text, remark, state) {
    if (text !== null && text !== undefined)
        by_id("cards").append(make("div", { class: state ? `card ${state}` : "card" }, make("dt", {}, name),
            make("dd", {}, text, remark ? make("span", { class: "remark" }, remark) : null)));
}

function show_cards(data) {
    const { info } = data;
    const first = info.sequences[0];
    const problems = info.problems.reduce((sum, kind) => sum + kind.count, 0);
    const findings = info.findings.reduce((sum, kind) => sum + kind.count, 0);
    show_card("State", problems > 0 ? plural(problems, "problem") : "Nothing is lost",
        findings > 0 ? plural(findings, "finding") : "no findings", problems > 0 ? "bad" : findings > 0 ? "odd" : "good");
    if (first) {
        const more = info.sequences.length + info.further_sequences - 1;
        show_card("Profile and level", `${named(first.profile, first.profile_idc)} @ ${first.level}`, first.codec);
        show_card("Picture", size_text(first.size), more > 0 ? `and ${plural(more, "further sequence")}` : first.scan_type);
        show_card("Frame rate", first.frame_rate ? `${Number(first.frame_rate.value.toPrecision(5))} Hz` : "not told",
            first.frame_rate ? (first.fixed_frame_rate ? "fixed" : "not fixed") : null);
    }
    show_card("Frames", count_text(info.frames.pictures), `${count_text(info.frames.key_frames)} of them key frames`);
    show_card("Duration", info.frames.seconds === null ? "not told" : time_text(Number(info.frames.seconds.toFixed(3))),
        info.frames.seconds !== null && info.frames.timed_frames < info.frames.count ? "of a part of the frames" : null);
    show_card("Bit rate", info.frames.mean_bit_rate === null ? "not told" : rate_text(info.frames.mean_bit_rate),
        info.frames.peak_bit_rate === null ? null : `peak ${rate_text(info.frames.peak_bit_rate)}`);
    show_card("Size", bytes_text(info.size), `${info.framing}`);
}

function show_facts(data) {
    const { info } = data;
    const several = info.sequences.length > 1;
    const tables = [fact_table("The whole stream", stream_facts(data))];
    info.sequences.forEach((s, i) => {
        const caption = several ? `Sequence ${i + 1} of ${info.sequences.length}, from offset ${count_text(s.offset)}, ` +
            plural(s.pictures, "picture") : "The sequence";
        const changes = several && i > 0 ? [["Changes", s.changes.join(", ")]] : [];
        tables.push(fact_table(caption, [...changes, ...sequence_facts(s)]));
    });
    const shown = tables.slice(0, 3);
    by_id("facts").append(make("div", { class: "fact-tables" }, shown));
    if (tables.length > 3)
        by_id("facts").append(make_details(plural(tables.length - 3, "further sequence"),
            make("div", { class: "fact-tables" }, tables.slice(3))));
    if (info.encoder_settings !== null)
        by_id("facts").append(make_details("Encoder settings", make("p", { class: "settings" }, info.encoder_settings)));
    if (info.further_sequences > 0)
        by_id("facts").append(make("p", { class: "note" }, `${plural(info.further_sequences, "further sequence")} not shown.`));
}

/// The kinds of problems, or of findings, and each place with its frame.
function wrong_part(word, kinds, places, total, show_frame) {
    const table = make_table(`Kinds of ${word}s`, [
        { head: "What", text: kind => kind.message, class: "text" },
        { head: "Times", text: kind => count_text(kind.count), number: true },
        { head: "First at byte", text: kind => count_text(kind.first_offset), number: true },
        { head: "Last at byte", text: kind => count_text(kind.last_offset), number: true },
        { head: "Bytes", text: kind => kind.bytes > 0 ? count_text(kind.bytes) : "–", number: true },
    ], kinds);
    const frame_button = frame => {
        if (frame === null || !show_frame)
            return frame === null ? "–" : count_text(frame);
        const button = make("button", { type: "button", class: "small" }, `Frame ${count_text(frame)}`);
        button.addEventListener("click", () => show_frame(frame));
        return button;
    };
    const each = make_table(`Each ${word} and its place`, [
        { head: "At byte", text: place => count_text(place[0]), number: true },
        { head: "What", text: place => place[1], class: "text" },
        { head: "Bytes", text: place => place[2] > 0 ? count_text(place[2]) : "–", number: true },
        { head: "In or before", text: place => frame_button(place[3]) },
    ], places);
    const note = places.length < total ? `The first ${count_text(places.length)} of ${count_text(total)}.` : null;
    return [make("h3", {}, `${word[0].toUpperCase()}${word.slice(1)}s`), table,
        make_details(`Each with its place (${count_text(places.length)})`, note ? make("p", { class: "note" }, note) : null, each)];
}

function show_wrong(data, show_frame) {
    const { info } = data;
    const body = by_id("wrong-body");
    const sum = kinds => kinds.reduce((all, kind) => all + kind.count, 0);
    if (info.problems.length === 0 && info.findings.length === 0)
        body.append(make("p", { class: "verdict good" }, "Nothing: every byte is part of a unit or padding, every header could be " +
            "read, and every value is inside its range."));
    if (info.problems.length > 0)
        body.append(make("p", { class: "verdict bad" }, "The stream is broken: what a problem tells of is lost or cannot be read."),
            ...wrong_part("problem", info.problems, data.problems, sum(info.problems), show_frame));
    if (info.findings.length > 0)
        body.append(make("p", { class: "verdict odd" }, info.problems.length > 0 ? "A finding is odd, and no more: nothing is lost by it." :
            "Nothing is lost. A finding is odd, and no more."),
            ...wrong_part("finding", info.findings, data.findings, sum(info.findings), show_frame));
    if (data.without_output_number.count > 0)
        body.append(make("p", { class: "note" }, `${plural(data.without_output_number.count, "frame")} from number ` +
            `${count_text(data.without_output_number.first)} on have no output number: too many later ones come before their turn.`));
}

/// What the container says beside the stream; no section where there is none.
function show_container(data) {
    if (data.container.length + data.container_facts.length === 0)
        return;
    by_id("container").hidden = false;
    if (data.container_facts.length > 0)
        by_id("container-body").append(fact_table("The container", data.container_facts));
    if (data.container.length > 0)
        by_id("container-body").append(make_table("What the container says, and what the stream says", [
        { head: "What", text: check => check.what, first: true },
        { head: "Container", text: check => check.container, class: "text" },
        { head: "Stream", text: check => check.stream, class: "text" },
        { head: "", text: check => check.agrees ? "✓ agrees" : "✗ differs", class: "whole" },
    ], data.container));
}
