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

Messages go to the standard error stream, with the name of the file, the byte offset and the reason; reading
goes on. On a terminal they are coloured, unless the environment variable NO_COLOR is set.)";

constexpr const char* inspect =
    R"(Each line tells of one NAL unit: the byte offset of its framing, the size of the framing, its length from the
header byte to where decoding stops, the size of its RBSP, nal_ref_idc, type and name. Without --nals, the
fields of delimiters, parameter sets, slice headers and SEI messages stand indented below their unit, under
their H.264 names, what they mean in brackets, and what follows from them behind =. Slice headers go as far as
the modification of the reference picture lists. SEI payloads that are not read show their first bytes. What
does not parse, and what belongs to no unit and is not zero padding, is reported on the standard error stream
with its byte offset; reading goes on.

With --tsv every syntax element of every unit is a line: the number of the unit, its type, byte and bit in the
file, bit in the unit without emulation prevention, number of bits, descriptor, structure, name, value, and
whether the value is inside its range. A first line names the columns.

Examples:
  orv-h264 inspect movie.264
  orv-h264 inspect --only 7,8 movie.264
  orv-h264 inspect --only 1-5 --limit 30 movie.264
  orv-h264 inspect --tsv movie.264 | cut -f3,9,10
  orv-h264 inspect --json movie.264 | jq 'select(.nal_unit_type == 7) | .fields.profile_idc'
  camera | orv-h264 inspect --nals --format annexb -)";

constexpr const char* frames =
    R"(Each line tells of one frame: its number, the byte offset of its first unit, its size, whether decoding can
begin there (IDR, or a recovery point SEI message), the types of its slices, how many fields long it is shown,
the same in seconds where the parameter sets tell the field rate, and the units that it holds. The closing line
adds up. A frame is a picture with the units that lead to it, as H.264 7.4.1.2.4 tells pictures apart; what holds
no slice is no frame. Frames stand in decoding order; --json also has their number in output order and their
picture order count. The two fields of a frame stay together unless --split-fields is given. The last frame ends
with the input. The peak bit rate is that of the fullest second, counted from the start.

Examples:
  orv-h264 frames movie.264
  orv-h264 frames --split-fields interlaced.264
  orv-h264 frames --json movie.264 | jq 'select(.key == true) | .offset')";

constexpr const char* info =
    R"(What a stream is at a glance: profile and level, picture size and shape, scan type as its slices show it, rates,
colour, HRD, frames, NAL units by type, the encoder, and what is wrong with it, a line for each kind of problem.
A stream that changes its sequence parameter set is shown sequence by sequence, up to 64 of them; further ones
are counted.

Examples:
  orv-h264 info movie.264
  orv-h264 info --format length4 sample.bin
  orv-h264 info --json movie.264 | jq -r '.sequences[0].codec')";

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
