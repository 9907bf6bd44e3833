// Puts the page together.
"use strict";

function base_name(path) {
    return path.slice(path.lastIndexOf("/") + 1) || path;
}

function show_contents() {
    for (const section of document.querySelectorAll("main > section"))
        if (!section.hidden)
            by_id("contents").append(make("li", {}, make("a", { href: `#${section.id}` }, section.querySelector("h2").textContent)));
}

/// What is wrong with frames, by their numbers.
function marks_of(data) {
    const marks = new Map();
    for (const [, message, , frame] of [...data.problems, ...data.findings])
        if (frame !== null)
            marks.set(frame, [...(marks.get(frame) ?? []), message].slice(0, 8));
    return marks;
}

function show_head(data) {
    const { info } = data;
    const first = info.sequences[0];
    const name = base_name(info.file);
    by_id("title").textContent = name;
    document.title = `${name} – H.264 stream report`;
    by_id("tagline").textContent = [
        first && `${named(first.profile, first.profile_idc)} @ ${first.level}`, first && size_text(first.size),
        first?.frame_rate && hertz_text(first.frame_rate), first?.scan_type, plural(info.frames.pictures, "frame"),
        info.frames.seconds !== null && time_text(Number(info.frames.seconds.toFixed(3))),
    ].filter(Boolean).join(" · ");
    by_id("made-by").textContent = `Made by orv-h264 ${data.version} report. This page holds all it shows, and loads nothing.`;
    by_id("licence-text").textContent = data.plot_licence;
}

function show_page() {
    const data = read_data();
    const frames = decode_frames(data);
    const marks = marks_of(data);
    theme.apply();
    show_head(data);
    show_cards(data);
    show_facts(data);
    let panel = null;
    show_wrong(data, frames ? frame => panel.go_to(frame) : null);
    show_container(data);
    if (data.frame_count > 0)
        panel = new frame_panel(data, frames, marks);
    else
        for (const id of ["sizes", "rate"])
            by_id(id).hidden = true;
    if (data.frame_count > 0) {
        show_rates(data, frames);
        show_durations(data, frames);
    }
    show_buffer(data);
    show_structure(data);
    show_shares(data);
    show_sets(data);
    show_messages(data);
    show_contents();
    start_theme();
}

show_page();
