// What --help says below the options of each subcommand.
#pragma once

namespace orv_h264::help_texts {

/// Below each of the others.
constexpr const char* exit_statuses =
    R"(

Exit status: 0 nothing is wrong, 1 the stream is broken somewhere, 2 usage or input and output, 3 the input is
recognised but not supported. A stream without any NAL unit, as an empty input, is broken.)";

constexpr const char* main =
    R"(Each subcommand has its own --help, with examples.

Where a stream is read, it may lie in MP4, MOV, Matroska, an MPEG transport stream or FLV, if libavformat is there.

Messages go to the standard error stream, with the name of the file, the byte offset and the reason; reading
goes on. On a terminal they are coloured, unless the environment variable NO_COLOR is set.)";

constexpr const char* inspect =
    R"(Each line tells of one NAL unit: the byte offset of its framing, the size of the framing, its length from the
header byte on, the bytes behind that without emulation prevention, nal_ref_idc, type and name. Without --nals, the
syntax elements of the unit stand indented below it, under their H.264 names, what they mean in brackets, and what
follows from them behind =. Of slices that is what stands before their data. What the line of the unit or the heading
of an SEI message says, and fixed patterns, are elements too: --positions shows them, and where each one lies. Bytes in
a row are one line. What does not parse shows every element that was read; what failed, values outside of their range,
and what belongs to no unit and is not zero padding, is told on the standard error stream with its byte offset; reading
goes on.

With --csv or --tsv every syntax element of every unit is a line: the number of the unit, its type, byte and bit in
the file, bit in the unit without emulation prevention, number of bits, descriptor, structure, name, value, and
whether the value is inside its range. A first line names the columns.

--only takes numbers, ranges and these names: slice, idr, partition, sei, sps, pps, aud, end, filler, sps-ext, prefix,
subset-sps, dps, auxiliary, extension.

Examples:
  orv-h264 inspect movie.264
  orv-h264 inspect --only sps,pps movie.264
  orv-h264 inspect --only slice --limit 30 --positions movie.264
  orv-h264 inspect --tsv movie.264 | cut -f3,9,10
  orv-h264 inspect --json movie.264 | jq '.fields.seq_parameter_set_data.profile_idc | values'
  camera | orv-h264 inspect --nals --format annexb -)";

constexpr const char* explain =
    R"(Tells which unit, structure and syntax element the byte at OFFSET belongs to, or the one bit of it: value, meaning,
coding, place, range and clause, and the elements around it. Outside of any header it tells what the byte is: start
code, length prefix, emulation prevention, slice data, zero padding, or a gap.

Examples:
  orv-h264 explain movie.264 10
  orv-h264 explain movie.264 0x2a:7
  orv-h264 explain --json movie.264 10 | jq '.elements[].name')";

constexpr const char* frames =
    R"(Each line tells of one picture: its number in decoding order, its place in output order, the byte offset of its
first unit, its size, whether decoding can begin there (IDR, or a recovery point SEI message with its count), the
types of its slices, its structure (frame, MBAFF, top, bottom, or fields for two of them), frame_num, picture
order count, nal_ref_idc, when it is shown in seconds, for how many fields, its units, and the layers or views
where there are any. The closing line adds up what is shown. A picture is told from the next one as H.264
7.4.1.2.4 says, with the units that lead to it; what holds no slice is no frame.

The size goes to the end of the last unit. Zero bytes that belong to no unit, between its units and behind them,
are padding; filler data units and the payloads of filler payload messages are filler, which is part of the size.
Times come from buffering periods and picture timing, or else from the rate that the parameter sets tell. The
mean bit rate is that of units and padding over the time of the frames that are timed; the peak is that of the
fullest second, counted from the start. Where the place in output order comes only behind 1,024 later pictures,
it is not told. Of a container a column has its own time for the picture.

--fields makes each field a line; key pictures are counted as pictures all the same. --json has more: exact
times, decoding times and where they come from, padding and filler, pic_struct, ids of parameter sets. --csv and
--tsv have the members of the JSON objects as columns.

Examples:
  orv-h264 frames movie.264
  orv-h264 frames --output-order --limit 20 movie.264
  orv-h264 frames --fields interlaced.264
  orv-h264 frames --csv movie.264 | cut -d, -f2,4,5
  orv-h264 frames --json movie.264 | jq 'select(.key == true) | .offset')";

constexpr const char* info =
    R"(What a stream is at a glance: profile and level, picture size and shape, scan type as its slices show it, rates,
colour, the bit rates of its HRD and how many seconds have more, frames, groups of pictures, the encoder with its
settings, layers and views, NAL units and SEI messages by type. What cannot be read or is lost is a problem, what is
only odd a finding: a line for each kind.

A stream that changes its sequence parameter set is shown sequence by sequence, with what the one before has
otherwise, up to 64 of them; further ones are counted. The reorder depth that pictures use, the most that come before
one in decoding order and follow it in output order, stands beside the one that the stream promises. A group begins
with an IDR picture or a recovery point; it is open when pictures of it are output before that one. Bit rates and the
duration are those of the frames whose duration the stream tells.

With --csv and --tsv a line is a fact: its path in the JSON object, and its value.

Examples:
  orv-h264 info movie.264
  orv-h264 info --format length4 sample.bin
  orv-h264 info --json movie.264 | jq -r '.sequences[0].codec'
  orv-h264 info --tsv movie.264 | grep bit_rate
  find . -name '*.264' -print0 | orv-h264 info --json --jobs 0 --null --files-from -)";

/// Below those that read many files.
constexpr const char* many_files =
    R"(

Several FILEs, or --files-from: each is read in a process of its own, --jobs of them at once, and the output comes in
the order of the files. One that cannot be read, or whose process a signal ends, is told on the standard error stream,
with --json in an object of its own too (file, error, status), and the others go on. The exit status is the greatest
of all. Blocks of text have an empty line between them; every object of --json names its file, and so does the first
column of --csv and --tsv.)";

constexpr const char* report =
    R"(Writes one HTML page about FILE that a browser opens without a network: the summary that info prints, frame sizes by
type in decoding or output order, bit rate over time beside that of the HRD, durations where they vary, structure and
reference use, shares of bytes by unit and slice type, parameter sets and SEI messages element by element, and what is
wrong, each with its place. Plots zoom and pan; every frame tells what it is, to the keyboard too; each plot has its
table. The page loads nothing, and no byte of FILE can make it run anything.

Behind 1,000,000 frames the page has the frames in stretches, and says so. The page appears when it is complete, and
replaces what was there. A page is written of a broken stream too.

Examples:
  orv-h264 report movie.264
  orv-h264 report movie.264 -o movie.html
  orv-h264 report movie.264 -o - | wc -c)";

constexpr const char* check =
    R"(Looks at a stream with rules that the standard states, and prints what breaks them, a line each: the byte offset of
the unit, its number and type, the byte and bit of the element, the severity, what was found and what is allowed, the
rule and its clause. The last line counts. Errors are what the standard does not allow; warnings are allowed, or in
one edition, and go wrong in practice; notes are worth knowing. Lines come in the order of the units, but for what
only the output order of pictures, or the end of the stream, tells.

--rules lists all rules, --explain tells of one; docs/rules.md has them too.

--hrd runs the hypothetical reference decoder of Annex C, and prints a line for each access unit and schedule: when its
bits arrive and it is removed, in seconds, and how many bits are in the coded picture buffer before and behind that;
then the least and the most of each schedule. The NAL HRD counts all bytes, the VCL HRD slices and filler data.

The exit status is 1 where an error was found, with --hrd where a buffer underflows or overflows.

Examples:
  orv-h264 check movie.264
  orv-h264 check --ignore 'vui-*' --limit 3 movie.264
  orv-h264 check --sarif movie.264 | jq '.runs[].properties.errors'
  orv-h264 check --junit *.264 | grep -c testcase
  orv-h264 check --hrd movie.264
  orv-h264 check --rules
  orv-h264 check --explain sps-level-known)";

constexpr const char* convert =
    R"(Writes every NAL unit of IN to OUT in another framing: start codes (annexb) or big-endian lengths of 1 to 4
bytes, as MP4 and Matroska have them. Units keep their bytes. From annexb to annexb start codes keep their size,
and zero padding stays; lengths carry no padding, and what is left out is told. Behind lengths a unit may hold
what start codes cannot carry: a start code inside gets an emulation-prevention byte and is told, zeros at the
end get the byte 03, a lone zero is left out and told. A unit with its forbidden bit set is carried and told.
OUT appears when it is complete, and replaces what was there; - is the standard output. A unit that cannot be
carried (longer than its prefix can tell, larger than --max-unit) stops the conversion, and OUT is left as it
was; so does an input without any unit. Bytes that belong to no unit are reported and left out.

--avcc writes the decoder configuration record (ISO/IEC 14496-15, the payload of the box avcC) of the parameter
sets of IN, with the length of --to, or of 4 bytes. --parameter-sets reads such a record, or a whole box, and puts
the parameter sets in force before the first picture and each IDR picture that does not carry its own.

Examples:
  orv-h264 convert movie.264 movie.avc --to length4
  orv-h264 convert movie.avc movie.264 --to annexb
  orv-h264 convert movie.264 - --to length4 | muxer
  orv-h264 convert movie.264 movie.avc --to length4 --avcc extradata.bin
  orv-h264 convert movie.264 --avcc extradata.bin
  orv-h264 convert sample.bin movie.264 --to annexb --parameter-sets extradata.bin)";

constexpr const char* cut =
    R"(Writes the access units of IN between two places to OUT, as they are: whole, to the byte, in the framing of IN; of
a container with start codes. The parameter sets that are in force where the cut begins come first, each once, and
none that the first access unit carries itself.

A PLACE names one picture: 100 is the one with this number, as frames counts them; 12.5s, 1:02.5 or 0:01:02.5 the first
in decoding order that is shown then or later, by a container's own times or else by those that frames tells; @4711 or
@0x1267 the first that begins at this byte or behind it. --from begins with it, and --to ends before it, so that two
cuts at one place have each picture once. The fields of a frame stay together, but with a byte offset, which may name
the second one. Without --from a cut begins at the start, without --to it goes to the end.

What cannot be decoded at the seams is told on the standard error stream, and is no error: pictures before the first
key picture, those of an open group that are shown before it, and those behind the end that would be shown between
the pictures of the cut. Damage is told where it is written, and what is not written is not looked at. --key and times
read IN twice, so that it has to be a file; everything else takes a pipe.

--base drops the units of other layers and views (types 14, 15, 16, 20 and 21), their SEI messages, and PPSs that
only they can use. --layer keeps what a decoder of the layer needs by H.264 G.8.8.1: lower dependency_ids whole, its
own up to quality_id, all up to temporal_id. --view keeps a view, those it refers to in any picture, and the base view
(H.8.5.3), without depth.

OUT appears when it is complete, and replaces what was there; - is the standard output. A cut that holds no unit, a layer
or view that is not there, and a unit larger than --max-unit leave it as it was.

Examples:
  orv-h264 cut movie.264 part.264 --to 43
  orv-h264 cut movie.264 part.264 --from 1.5s --to 0:00:01.76 --key
  orv-h264 cut movie.264 - --from @0x1267 --only slice | wc -c
  orv-h264 cut movie.264 sets.264 --only sps,pps
  orv-h264 cut movie.264 base.264 --base
  orv-h264 cut movie.264 part.264 --to 43 --json | jq .bytes)";

constexpr const char* diff =
    R"(Lays the access units of two streams beside each other: those that are the same, changed, removed, inserted or
moved. Those with a partner that are not the same are compared unit by unit and element by element: how often each
differs, old and new values, and the byte offset of the unit in both files where it was first. Slice data are compared
by their bits, and told as slice_data. What lies around units is no difference of streams, and is
told in one line: start codes, lengths, emulation prevention, zero bytes at the end.

--ignore takes paths as inspect --tsv has structures and names, from any dot on: frame_num, slice_header.*, [] for any
index. A structure that only one stream has is one difference, and so is a unit: access_unit_delimiter_rbsp,
sei_rbsp.sei_message.sei_payload.user_data_unregistered. The text is a screen; --all lists all of it, as --json does.
Both files are read twice where they differ. Memory grows by some 100 bytes with each access unit.

Examples:
  orv-h264 diff movie.264 movie.avc
  orv-h264 diff --ignore access_unit_delimiter_rbsp,user_data_unregistered movie.264 movie.avc
  orv-h264 diff --json movie.264 movie.avc | jq .same)";

/// Below diff, whose statuses are those of programs that compare.
constexpr const char* diff_statuses =
    R"(

Exit status: 0 the streams are the same, 1 they differ, 2 usage or input and output, 3 an input is recognised but not
supported. A stream that is broken is compared as far as it can be read.)";

constexpr const char* edit =
    R"(Writes IN to OUT with other header elements, and with units and SEI messages that come or go. Everything else is
copied byte for byte, in the framing that it had; so is what cannot be read. OUT is read back and held against IN
element by element before it takes its place: what has changed is printed, and anything else that had would be told,
with status 2 and OUT as it was.

PATH is the end of a path that inspect --tsv prints: structures and name joined by dots, indices in brackets. Where it
names several elements of a unit, the edit is refused, and they are listed. A presence flag brings what belongs to it
with the values that the standard infers. Several --set take effect one after another. Values are decimal, or
hexadecimal behind 0x; one that the element cannot hold is refused, one outside of its range written and told.
Conditions name elements of the same unit, as it was; unit is its number, as inspect --tsv counts.

What other units take from a changed parameter set is rewritten so that they say the same: slice headers, with frame_num
and picture order counts in the new lengths, picture timing, buffering periods. Where that cannot be, or slice data
would be read or decoded otherwise, the edit is refused with the first unit concerned; --force writes the latter.

--rate sets num_units_in_tick and time_scale, and leaves fixed_frame_rate_flag. --level auto looks at MaxFS, MaxMBPS and
MaxDpbMbs. --crop is refused where the stream cannot tell it: chroma is cropped with luma. Colours have names such as
bt709, bt601, bt2020 (primaries), pq, hlg, srgb (transfer), bt2020nc, rgb (matrix), or the numbers of Tables E-3 to E-5.
--insert takes a unit as it stands behind a start code; before a picture is behind its delimiter. A container is written
as Annex B, with the parameter sets of its record before pictures that lack them.

Examples:
  orv-h264 edit movie.264 new.264 --rate 30000/1001 --sar 4:3
  orv-h264 edit movie.264 new.264 --set vui_parameters.max_num_reorder_frames=0 --set max_dec_frame_buffering=1
  orv-h264 edit movie.264 new.264 --set 'log2_max_frame_num_minus4=4 where seq_parameter_set_id=0'
  orv-h264 edit movie.264 new.264 --remove-sei user_data_unregistered --remove-filler --level auto
  orv-h264 edit movie.264 --dry-run --crop 0,0,0,8
  orv-h264 edit movie.264 new.264 --add-aud --repeat-headers
  orv-h264 edit movie.264 --dry-run --json --level 4 | jq '.changes[].path'
  orv-h264 edit movie.264 new.264 --insert 'hex:0910 before unit 3'
  orv-h264 edit movie.264 new.264 --insert-sei 01234567-89ab-cdef-0123-456789abcdef:hello)";

constexpr const char* avcc =
    R"(FILE holds an AVC decoder configuration record (ISO/IEC 14496-15), the payload of the box avcC of an MP4 file or
the CodecPrivate of a Matroska track; a whole box, with its size and type in front, does as well. Shows the
members of the record and the fields of its parameter sets.

Examples:
  orv-h264 avcc extradata.bin
  orv-h264 avcc --json extradata.bin | jq .lengthSizeMinusOne)";

constexpr const char* help =
    R"(The same as --help, of the tool or behind a subcommand.

Examples:
  orv-h264 help
  orv-h264 help convert)";

} // namespace orv_h264::help_texts
