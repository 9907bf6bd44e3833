'The syntax of H.264 streams: NAL units, headers, pictures, parameter sets, without decoding a picture.\n\nA source is anything that holds a stream: bytes, bytearray, memoryview or mmap, of which nothing is copied; the path of a\nfile; a binary file; or an iterable of pieces of any size. Its framing is recognised as by the tool orv-h264, or said:\n"annex_b", or "length_1" to "length_4" for length prefixes. While bytes are looked through, other threads run, unless the\nsource can be written to.\n\n>>> import orv_h264\n>>> stream = bytes.fromhex("00000001 0910 00000001 0bff 0000010a")\n>>> [unit.nal_unit_type for unit in orv_h264.units(stream)]\n[9, 11, 10]\n'
# Written by make-stubs.
import mmap as _mmap
import os as _os
from collections.abc import Iterable, Iterator, Mapping
from dataclasses import asdict as _asdict
from dataclasses import dataclass, field
from fractions import Fraction
from typing import Any, BinaryIO, Literal, NamedTuple, Union, cast, overload
from .structures import List, Structure, hrd_parameters, nal_unit_header, pic_parameter_set_rbsp, seq_parameter_set_data, seq_parameter_set_rbsp, subset_seq_parameter_set_rbsp
__version__: str
class Unit:
    """A NAL unit of a stream. bytes(unit) copies it; where bytes are taken, it is taken as they are."""
    @property
    def number(self) -> int:
        """How many units come before it."""
        ...
    @property
    def offset(self) -> int:
        """Where its header byte lies in the stream."""
        ...
    @property
    def size(self) -> int:
        """Its bytes, without the framing; 1 at least."""
        ...
    @property
    def framing_size(self) -> int:
        """Bytes of its start code, with a zero byte before it, or of its length prefix."""
        ...
    @property
    def stated_length(self) -> int:
        """What the length prefix says; 0 in Annex B."""
        ...
    @property
    def cut(self) -> bool:
        """The stream ends before the unit, by its length prefix, does."""
        ...
    @property
    def nal_ref_idc(self) -> int:
        """Of the header byte, 0 to 3."""
        ...
    @property
    def nal_unit_type(self) -> int:
        """Of the header byte, 0 to 31."""
        ...
    @property
    def data(self) -> memoryview:
        """The unit, the header byte first, emulation prevention in. Nothing is copied where the source is a
        buffer or a file by its path, and the source stays locked as long as the view lives."""
        ...
    def __len__(self) -> int: ...
    def __bytes__(self) -> bytes: ...
class Gap:
    """Bytes of a stream that belong to no unit."""
    @property
    def reason(self) -> str:
        """before_first_unit, between_units, no_header, too_large (a unit above the limit), cut_prefix or no_memory (a unit without)."""
        ...
    @property
    def offset(self) -> int:
        """Where it begins in the stream."""
        ...
    @property
    def size(self) -> int:
        """Its bytes."""
        ...
    @property
    def stated_length(self) -> int:
        """What the length prefix says, with too_large."""
        ...
    @property
    def nal_ref_idc(self) -> int:
        """Of the unit, with too_large."""
        ...
    @property
    def nal_unit_type(self) -> int:
        """Of the unit, with too_large."""
        ...
Framing = Literal['annex_b', 'length_1', 'length_2', 'length_3', 'length_4']
Buffer = Union[bytes, bytearray, memoryview, _mmap.mmap, Unit]
Piece = Union[Buffer, tuple[Buffer, Union[int, None], Union[int, None]]]
Source = Union[Buffer, str, '_os.PathLike[str]', BinaryIO, Iterable[Piece]]
SequenceParameterSet = Union[seq_parameter_set_data, seq_parameter_set_rbsp, subset_seq_parameter_set_rbsp]
class Failure(NamedTuple):
    """Why a structure is read or written no further."""
    reason: str
    'unit_ends, payload_ends, malformed_code, too_large, no_sps and so on, as orv_utils_v4::h264::reason names them.'
    element: str
    'The syntax element, with its indices.'
    bit: int
    'Where the element begins, from the first bit of the unit on, emulation prevention removed.'
    value: int
    'With too_large and too_small the value, with no_sps and no_pps the id.'
    bound: int
    'The limit that the value breaks.'
    text: str
    'All of it in a line.'
class Finding(NamedTuple):
    """A value outside of the range that the standard states. It is stored, and reading goes on."""
    element: str
    bit: int
    value: int
    lowest: int
    highest: int
class H264Error(ValueError):
    """What cannot be read, written or edited, where that is asked for strictly.

    >>> try:
    ...     orv_h264.edit(b"\\x09\\x10", "primary_pic_type", 9)
    ... except orv_h264.H264Error as error:
    ...     print(error.failure.element, error.failure.reason)
    primary_pic_type too_large
    """

    def __init__(self, text: str, failure: Union[Failure, None]=..., unit: Union[Unit, None]=...) -> None:
        ...

    @property
    def element(self) -> Union[str, None]:
        """The syntax element that fails."""

    @property
    def bit(self) -> Union[int, None]:
        """Where that begins in its unit."""
class Element(NamedTuple):
    """A syntax element of a unit, with its place."""
    structure: str
    'The structures around it, outermost first, with dots between them.'
    name: str
    'Its name in the standard, with its indices: offset_for_ref_frame[2].'
    value: Union[int, bytes]
    bit: int
    'Where it begins in the unit, in bits, emulation prevention removed.'
    bits: int
    byte: int
    'Where the byte that it begins in lies in the source, emulation prevention counted.'
    descriptor: str
    'As in clause 7.2: u(8), ue(v).'
    lowest: Union[int, None]
    highest: Union[int, None]
    inside: bool
    'The value lies in the range that the standard states.'

    @property
    def path(self) -> str:
        """Structures and name."""

    @property
    def clause(self) -> str:
        """The clause of H.264 with the syntax table; "" where it is none of H.264's."""

    @property
    def semantics(self) -> str:
        """The clause that says what the element means."""
class Context:
    """What a unit is read with: the parameter sets as they stand at its place of the stream, and which are active.

    The sets by their ids cannot be changed; copy() gives one that can.
    """

    def __init__(self) -> None:
        ...

    @property
    def sps(self) -> dict[int, seq_parameter_set_rbsp]:
        ...

    @property
    def subset_sps(self) -> dict[int, subset_seq_parameter_set_rbsp]:
        ...

    @property
    def pps(self) -> dict[int, pic_parameter_set_rbsp]:
        ...

    @property
    def dps(self) -> dict[int, Structure]:
        ...
class Reading:
    """A unit that was read with the parameter sets that are active for it."""

    def __init__(self, core: Any) -> None:
        ...

    def __repr__(self) -> str:
        ...

    @property
    def unit(self) -> Unit:
        """The unit as it came."""

    @property
    def header(self) -> nal_unit_header:
        """What stands before the RBSP."""

    @property
    def rbsp(self) -> Any:
        """The structure of orv_h264.structures that the unit holds, up to a failure; None where its type has none. Of a slice
        it is what stands before the data. It is the reading's own and may be changed."""

    @property
    def sps(self) -> Union[seq_parameter_set_data, None]:
        """That a slice stands on, or an SEI message is read with. It cannot be changed; a copy() can."""

    @property
    def pps(self) -> Union[pic_parameter_set_rbsp, None]:
        """That a slice stands on, likewise."""

    @property
    def context(self) -> Context:
        """What it was read with: writing it needs the same."""

    @property
    def failure(self) -> Union[Failure, None]:
        """Why it was read no further; None where all of it was."""

    @property
    def findings(self) -> list[Finding]:
        """Values outside of their ranges, the first 16 of them."""

    @property
    def finding_count(self) -> int:
        """How many there are."""

    @property
    def ending(self) -> str:
        """What stands where the unit ends: sound, no_stop_bit, cabac_zero_words, bytes_behind, or unknown."""

    @property
    def bits(self) -> int:
        """Where reading ended: of a slice, the first bit of its data."""

    @property
    def sound(self) -> bool:
        """Nothing failed, and no value lies outside of its range."""

    def trace(self) -> list[Element]:
        """Every element of the unit with its place, up to a failure.

        >>> [reading] = orv_h264.read(bytes.fromhex("00000001 0910"))
        >>> for element in reading.trace():
        ...     print(element.byte, element.bits, element.descriptor, element.name, element.value)
        4 1 f(1) forbidden_zero_bit 0
        4 2 u(2) nal_ref_idc 0
        4 5 u(5) nal_unit_type 9
        5 3 u(3) primary_pic_type 0
        5 1 f(1) rbsp_stop_one_bit 1
        5 1 f(1) rbsp_alignment_zero_bit 0
        5 1 f(1) rbsp_alignment_zero_bit 0
        5 1 f(1) rbsp_alignment_zero_bit 0
        5 1 f(1) rbsp_alignment_zero_bit 0
        """

    def check(self) -> 'Reading':
        """Itself, where nothing failed; else raises H264Error."""
def recognise_framing(source: Source) -> Framing:
    """The framing of a stream, by its head. H264Error where it is none, with what it is instead, if that is known. Of a file
    or an iterable the head is taken.

    >>> orv_h264.recognise_framing(bytes.fromhex("00000002 0910 00000005 65888040 00"))
    'length_4'
    """
@overload
def units(source: Source, framing: Union[Framing, None]=..., *, gaps: Literal[False]=..., max_unit: int=...) -> Iterator[Unit]:
    """The NAL units of a stream in their order, and where `gaps` is set what belongs to no unit. A unit of more than
    `max_unit` bytes is a gap.

    >>> for unit in orv_h264.units(bytes.fromhex("00000109100000010b"), "annex_b"):
    ...     print(unit.offset, unit.framing_size, unit.nal_unit_type, unit.data.hex())
    3 3 9 0910
    8 3 11 0b
    """
    ...
@overload
def units(source: Source, framing: Union[Framing, None]=..., *, gaps: bool, max_unit: int=...) -> Iterator[Union[Unit, Gap]]:
    ...
def read(source: Source, framing: Union[Framing, None]=..., *, strict: bool=..., max_unit: int=...) -> Iterator[Reading]:
    """The units of a stream, each read with the parameter sets that are active for it. Damaged bytes are told by
    Reading.failure; where `strict` is set they raise H264Error.

    >>> [reading] = orv_h264.read(bytes.fromhex("00000001 0950"))
    >>> reading.rbsp
    access_unit_delimiter_rbsp(primary_pic_type=2)
    """
def read_unit(unit: Buffer, context: Union[Context, None]=...) -> Reading:
    """Reads one unit by itself, its header byte first; with the context of another reading, where it is a slice or an SEI
    unit.

    >>> orv_h264.read_unit(b"\\x09\\x50").rbsp.primary_pic_type
    2
    """
@dataclass(frozen=True)
class AccessUnit:
    """The units of a primary coded picture, and what goes with them."""
    number: int
    'From 0, in decoding order.'
    units: tuple[Unit, ...]
    roles: tuple[str, ...]
    'Of each unit: delimiter, parameter_set, sei, prefix, primary, redundant, auxiliary, layer, end or other.'
    has_picture: bool
    structure: str
    'frame, mbaff_frame, top_field or bottom_field.'
    idr: bool
    nal_ref_idc: int
    slice_types: tuple[str, ...]
    'Of its primary slices: P, B, I, SP, SI.'
    findings: tuple[str, ...]
    'What it lacks, in English.'
    damaged: bool
    'A unit of it could not be read to its end.'
    picture: Union[int, None]
    'The number of its picture in decoding order.'
    decoding_stamp: Union[Fraction, None]
    'The timestamp of the piece that it begins in, in seconds.'
    presentation_stamp: Union[Fraction, None]
class Clock(NamedTuple):
    """A time of day that a picture has."""
    hours: int
    minutes: int
    seconds: int
    frames: int
    frames_dropped: bool
    ticks: int
@dataclass(frozen=True)
class Picture:
    """A decoded frame, of one access unit or of two that are its fields; or a field alone."""
    number: int
    'From 0, in decoding order.'
    output_number: Union[int, None]
    'From 0, in output order; None where it came too late to be told.'
    access_units: tuple[AccessUnit, ...]
    offset: int
    'Where the first unit of it begins in the stream, behind its framing.'
    end: int
    structure: str
    'frame, mbaff_frame, both_fields, top_field or bottom_field.'
    first_field: str
    'Of both_fields: top_field or bottom_field; else as `structure`.'
    nal_ref_idc: int
    slice_types: tuple[str, ...]
    idr: bool
    recovery_point: bool
    discarded: bool
    'A decoder does not output it: no_output_of_prior_pics_flag of the next IDR picture.'
    sequence: int
    'Pictures with a lower one are output before it.'
    counts: Union[tuple[int, int], None]
    'TopFieldOrderCnt and BottomFieldOrderCnt, where they are known.'
    fields_shown: int
    'How long it is shown, in fields.'
    time_source: str
    'hrd, constant_rate, caller, assumed_rate or none: where the three times come from.'
    decoding_time: Union[Fraction, None]
    presentation_time: Union[Fraction, None]
    duration: Union[Fraction, None]
    decoding_stamp: Union[Fraction, None]
    presentation_stamp: Union[Fraction, None]
    clocks: tuple[Clock, ...]
    findings: tuple[str, ...]

    @property
    def key(self) -> bool:
        """Decoding can begin there: an IDR picture, or a recovery point."""

    @property
    def poc(self) -> Union[int, None]:
        """PicOrderCnt, the lower one of both counts."""

    @property
    def units(self) -> tuple[Unit, ...]:
        """The units of its access units."""
def access_units(source: Source, framing: Union[Framing, None]=..., *, clock: int=..., clock_bits: int=..., max_unit: int=...) -> Iterator[AccessUnit]:
    """The access units of a stream in decoding order. Where pieces come with timestamps, these are of a clock of `clock` units a
    second, and begin again behind `clock_bits` bits: 32 in RTP, 33 in MPEG-2 systems.

    >>> pieces = [(bytes.fromhex("00000001 0910 00000001 0b"), 900, None), (bytes.fromhex("00000001 0910"), 4500, None)]
    >>> [(len(unit.units), unit.roles[-1]) for unit in orv_h264.access_units(pieces, "annex_b")]
    [(2, 'end'), (1, 'delimiter')]
    """
def pictures(source: Source, framing: Union[Framing, None]=..., *, order: Literal['output', 'decoding']=..., mode: Literal['early', 'bumping', 'when_decoded']=..., clock: int=..., clock_bits: int=..., max_unit: int=...) -> Iterator[Picture]:
    """The pictures of a stream with their order and times, in output order or in decoding order. `mode` says how late a picture
    is output: as early as its order is certain, as late as clause C.4 lets a decoder, or at once.

    >>> list(orv_h264.pictures(b"\\x00\\x00\\x01\\x09\\x10"))
    []
    """
frames = pictures
def info(source: Source, framing: Union[Framing, None]=..., *, name: Union[str, None]=..., max_unit: int=...) -> dict[str, Any]:
    """What a stream is: the object that `orv-h264 info --json` prints, which docs/schema/info.schema.json describes. `name` is
    its member `file`. Containers are not read.

    >>> orv_h264.info(bytes.fromhex("00000001 0910"), name="a delimiter")["nal_units"][0]["units"]
    1
    """
def unescape(unit: Buffer) -> bytes:
    """The bytes of a unit without its emulation-prevention bytes.

    >>> orv_h264.unescape(bytes.fromhex("0900000301")).hex()
    '09000001'
    """
def frame(unit: Buffer, framing: Framing=...) -> bytes:
    """A unit with a start code of four bytes, or its length, before it.

    >>> orv_h264.frame(b"\\x09\\x10", "length_2").hex()
    '00020910'
    """
def write(header: nal_unit_header, rbsp: Union[Structure, None]=..., context: Union[Context, None]=..., *, data_of: Union[Reading, None]=...) -> bytes:
    """A unit of its header and its RBSP, with emulation prevention and without framing. A slice takes its data from
    `data_of`, the reading of the slice that it was; without that it ends before its data. H264Error where a member does
    not fit its element.

    >>> from orv_h264 import structures
    >>> header = structures.nal_unit_header(nal_unit_type=9)
    >>> orv_h264.write(header, structures.access_unit_delimiter_rbsp(primary_pic_type=2)).hex()
    '0950'
    """
def edit(unit: Union[Buffer, Reading], path: Union[str, Mapping[str, int]], value: Union[int, None]=..., context: Union[Context, None]=...) -> bytes:
    """A unit with another value of an element, or of several, given as a mapping. A path is the element's name, with its
    indices and as many of the structures around it as tell it apart: "time_scale", "vui_parameters.time_scale",
    "offset_for_ref_frame[2]". A slice or an SEI unit needs its context, which a Reading brings along. The data of a slice
    stay what they were. H264Error where it cannot be done.

    >>> orv_h264.edit(b"\\x09\\x10", "primary_pic_type", 2).hex()
    '0950'
    """
@dataclass
class DecoderConfiguration:
    """AVCDecoderConfigurationRecord of ISO/IEC 14496-15: the box avcC of MP4, CodecPrivate of Matroska."""
    configurationVersion: int = ...
    AVCProfileIndication: int = ...
    profile_compatibility: int = ...
    AVCLevelIndication: int = ...
    lengthSizeMinusOne: int = ...
    sequenceParameterSetNALUnit: list[bytes] = ...
    pictureParameterSetNALUnit: list[bytes] = ...
    extension_present: bool = ...
    chroma_format: int = ...
    bit_depth_luma_minus8: int = ...
    bit_depth_chroma_minus8: int = ...
    sequenceParameterSetExtNALUnit: list[bytes] = ...
    behind: bytes = ...
    'Bytes behind the record, which are not written.'

    @classmethod
    def read(cls, record: Buffer) -> 'DecoderConfiguration':
        """Reads a record without the header of a box. H264Error where it ends too early or has another version."""

    def write(self) -> bytes:
        """The bytes of the record.

        >>> orv_h264.DecoderConfiguration(AVCProfileIndication=66, AVCLevelIndication=10).write().hex()
        '0142000affe000'
        """

    @property
    def framing(self) -> Framing:
        """Of the samples that it goes with."""
class ParameterSetStore:
    """The latest parameter sets of each id, as bytes: for who puts them into a record, or before pictures.

    >>> store = orv_h264.ParameterSetStore()
    >>> store.push(b"\\x09\\x10")
    'no_set'
    """

    def __init__(self) -> None:
        ...

    def push(self, unit: Buffer) -> str:
        """The next unit of a stream: no_set, added, changed, same, damaged, too_long or no_memory."""

    def push_configuration(self, record: DecoderConfiguration) -> int:
        """All sets of a record. Returns how many were not kept."""

    @property
    def changes(self) -> int:
        """How many times a set was added or changed."""

    def all(self) -> list[bytes]:
        """Those in force, in the order in which they are written."""

    def of_sps(self, seq_parameter_set_id: int) -> list[bytes]:
        """The SPS of an id, and what names it."""

    def make_configuration(self, length_size: int=..., seq_parameter_set_id: Union[int, None]=...) -> DecoderConfiguration:
        """The record that goes with the sets, or with those of an SPS. H264Error where there is no one record for them."""

    def write_picture(self, units: Iterable[Buffer], framing: Framing=..., sets: Literal['as_found', 'before_idr', 'left_out']=...) -> bytes:
        """The units of the next picture in a framing, and takes its parameter sets. With before_idr an IDR picture that lacks
        sets gets those in force, with left_out those that a record has go."""
def coded_size(sps: SequenceParameterSet) -> tuple[int, int]:
    """Width and height of a frame as it is decoded, in luma samples.

    >>> from orv_h264.structures import seq_parameter_set_data
    >>> orv_h264.coded_size(seq_parameter_set_data(pic_width_in_mbs_minus1=10, pic_height_in_map_units_minus1=8,
    ...                                            frame_mbs_only_flag=True))
    (176, 144)
    """
def cropped_size(sps: SequenceParameterSet) -> tuple[int, int]:
    """Width and height of a frame as it is output; (0, 0) where the cropping leaves nothing."""
def chroma_subsampling(sps: SequenceParameterSet) -> tuple[int, int]:
    """SubWidthC and SubHeightC; (1, 1) where there is no chroma to a picture."""
def sample_aspect_ratio(sps: SequenceParameterSet) -> Union[tuple[int, int], None]:
    """Width to height of a sample as it is sent; None where it is unspecified."""
def field_rate(sps: SequenceParameterSet) -> Union[Fraction, None]:
    """Fields in a second; None where it is not sent."""
def frame_rate(sps: SequenceParameterSet) -> Union[Fraction, None]:
    """Frames in a second: half the field rate.

    >>> from orv_h264.structures import seq_parameter_set_data, vui_parameters
    >>> timing = vui_parameters(timing_info_present_flag=True, num_units_in_tick=1001, time_scale=60000)
    >>> orv_h264.frame_rate(seq_parameter_set_data(vui_parameters_present_flag=True, vui_parameters=timing))
    Fraction(30000, 1001)
    """
def bit_depths(sps: SequenceParameterSet) -> tuple[int, int]:
    """BitDepthY and BitDepthC."""
def profile_name(sps: SequenceParameterSet) -> str:
    """The name of the profile, its constraint flags considered: "Constrained Baseline"; "" for one without a name."""
def codec_string(sps: SequenceParameterSet) -> str:
    """The codec as RFC 6381 writes it: "avc1.64001F"."""
def level_limits(sps: SequenceParameterSet) -> Union[dict[str, Any], None]:
    """The row of Table A-1 that the level is, its name ("1b", "4.1") too; None for a level that it does not have."""
def max_dpb_frames(sps: SequenceParameterSet) -> int:
    """MaxDpbFrames, A.3.1 h)."""
def most_buffered_frames(sps: SequenceParameterSet) -> int:
    """max_dec_frame_buffering, or what is inferred for it."""
def most_reordered_frames(sps: SequenceParameterSet) -> int:
    """max_num_reorder_frames, or what is inferred for it."""
def scaling_lists(sps: SequenceParameterSet, pps: Union[pic_parameter_set_rbsp, None]=...) -> tuple[list[list[int]], list[list[int]]]:
    """The six 4x4 lists and the six 8x8 lists that hold for the pictures of a PPS, in zig-zag order."""
def slice_group_map(sps: SequenceParameterSet, pps: pic_parameter_set_rbsp, slice_group_change_cycle: int=...) -> Union[bytes, None]:
    """mapUnitToSliceGroupMap, a byte each; None where slice_group_id does not have as many entries."""
class Schedule(NamedTuple):
    """An alternative of hrd_parameters: bits in a second, bits of the buffer, and whether the rate is constant."""
    bit_rate: int
    cpb_size: int
    cbr: bool
def schedules(hrd: hrd_parameters) -> list[Schedule]:
    """BitRate and CpbSize of the alternatives."""
