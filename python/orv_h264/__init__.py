"""The syntax of H.264 streams: NAL units, headers, pictures, parameter sets, without decoding a picture.

A source is anything that holds a stream: bytes, bytearray, memoryview or mmap, of which nothing is copied; the path of a
file; a binary file; or an iterable of pieces of any size. Its framing is recognised as by the tool orv-h264, or said:
"annex_b", or "length_1" to "length_4" for length prefixes. While bytes are looked through, other threads run, unless the
source can be written to.

>>> import orv_h264
>>> stream = bytes.fromhex("00000001 0910 00000001 0bff 0000010a")
>>> [unit.nal_unit_type for unit in orv_h264.units(stream)]
[9, 11, 10]
"""

import json as _json
import mmap as _mmap
import os as _os
from collections.abc import Iterable, Iterator, Mapping
from dataclasses import asdict as _asdict
from dataclasses import dataclass, field
from fractions import Fraction
from itertools import chain as _chain
from typing import Any, BinaryIO, Literal, NamedTuple, Union, cast, overload

from . import _core, structures
from ._core import Gap, Unit
from .structures import (List, Structure, hrd_parameters, nal_unit_header, pic_parameter_set_rbsp,
                         seq_parameter_set_data, seq_parameter_set_rbsp, subset_seq_parameter_set_rbsp)

__version__: str = _core.version

#: How units follow one another: with start codes, or each behind its length of 1 to 4 bytes.
Framing = Literal["annex_b", "length_1", "length_2", "length_3", "length_4"]
Buffer = Union[bytes, bytearray, memoryview, _mmap.mmap, Unit]
#: A piece of a stream, or one with its presentation timestamp and its decoding timestamp, which may be None.
Piece = Union[Buffer, tuple[Buffer, Union[int, None], Union[int, None]]]
Source = Union[Buffer, str, "_os.PathLike[str]", BinaryIO, Iterable[Piece]]
SequenceParameterSet = Union[seq_parameter_set_data, seq_parameter_set_rbsp, subset_seq_parameter_set_rbsp]

_MOST_UNIT_BYTES: int = _core.usual_most_bytes
_PIECE = 1 << 18
_HEAD = 1 << 16
_LONGEST_HEAD = 1 << 23
_AT_END = object()


class Failure(NamedTuple):
    """Why a structure is read or written no further."""

    reason: str
    "unit_ends, payload_ends, malformed_code, too_large, no_sps and so on, as orv_utils_v4::h264::reason names them."
    element: str
    "The syntax element, with its indices."
    bit: int
    "Where the element begins, from the first bit of the unit on, emulation prevention removed."
    value: int
    "With too_large and too_small the value, with no_sps and no_pps the id."
    bound: int
    "The limit that the value breaks."
    text: str
    "All of it in a line."


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

    def __init__(self, text: str, failure: Union[Failure, None] = None, unit: Union[Unit, None] = None) -> None:
        super().__init__(text)
        self.failure = failure
        self.unit = unit

    @property
    def element(self) -> Union[str, None]:
        """The syntax element that fails."""
        return self.failure.element if self.failure else None

    @property
    def bit(self) -> Union[int, None]:
        """Where that begins in its unit."""
        return self.failure.bit if self.failure else None


class Element(NamedTuple):
    """A syntax element of a unit, with its place."""

    structure: str
    "The structures around it, outermost first, with dots between them."
    name: str
    "Its name in the standard, with its indices: offset_for_ref_frame[2]."
    value: Union[int, bytes]
    bit: int
    "Where it begins in the unit, in bits, emulation prevention removed."
    bits: int
    byte: int
    "Where the byte that it begins in lies in the source, emulation prevention counted."
    descriptor: str
    "As in clause 7.2: u(8), ue(v)."
    lowest: Union[int, None]
    highest: Union[int, None]
    inside: bool
    "The value lies in the range that the standard states."

    @property
    def path(self) -> str:
        """Structures and name."""
        return f"{self.structure}.{self.name}"

    @property
    def clause(self) -> str:
        """The clause of H.264 with the syntax table; "" where it is none of H.264's."""
        return cast(str, _core.clause_of(self.structure.rpartition(".")[2]))

    @property
    def semantics(self) -> str:
        """The clause that says what the element means."""
        return cast(str, _core.semantics_of(self.structure.rpartition(".")[2]))


class Context:
    """What a unit is read with: the parameter sets as they stand at its place of the stream, and which are active.

    The sets by their ids cannot be changed; copy() gives one that can.
    """

    __slots__ = ("_core",)

    def __init__(self) -> None:
        self._core = _core.Context()

    @property
    def sps(self) -> dict[int, seq_parameter_set_rbsp]:
        return cast(dict[int, seq_parameter_set_rbsp], self._core.sps())

    @property
    def subset_sps(self) -> dict[int, subset_seq_parameter_set_rbsp]:
        return cast(dict[int, subset_seq_parameter_set_rbsp], self._core.subset_sps())

    @property
    def pps(self) -> dict[int, pic_parameter_set_rbsp]:
        return cast(dict[int, pic_parameter_set_rbsp], self._core.pps())

    @property
    def dps(self) -> dict[int, Structure]:
        return cast(dict[int, Structure], self._core.dps())


class Reading:
    """A unit that was read with the parameter sets that are active for it."""

    __slots__ = ("_core", "_header", "_rbsp")

    def __init__(self, core: Any) -> None:
        self._core = core
        self._header: Union[nal_unit_header, None] = None
        self._rbsp: Any = None

    def __repr__(self) -> str:
        name = type(self.rbsp).__name__ if self.rbsp is not None else "nothing that is read"
        return f"<Reading of {self.unit!r}: {name}{', failed' if self._core.failed() else ''}>"

    @property
    def unit(self) -> Unit:
        """The unit as it came."""
        return cast(Unit, self._core.unit())

    @property
    def header(self) -> nal_unit_header:
        """What stands before the RBSP."""
        if self._header is None:
            self._header = self._core.header()
        return cast(nal_unit_header, self._header)

    @property
    def rbsp(self) -> Any:
        """The structure of orv_h264.structures that the unit holds, up to a failure; None where its type has none. Of a slice
        it is what stands before the data. It is the reading's own and may be changed."""
        if self._rbsp is None:
            self._rbsp = self._core.rbsp()
        return self._rbsp

    @property
    def sps(self) -> Union[seq_parameter_set_data, None]:
        """That a slice stands on, or an SEI message is read with. It cannot be changed; a copy() can."""
        return cast(Union[seq_parameter_set_data, None], self._core.sps())

    @property
    def pps(self) -> Union[pic_parameter_set_rbsp, None]:
        """That a slice stands on, likewise."""
        return cast(Union[pic_parameter_set_rbsp, None], self._core.pps())

    @property
    def context(self) -> Context:
        """What it was read with: writing it needs the same."""
        context = Context.__new__(Context)
        context._core = self._core.context()
        return context

    @property
    def failure(self) -> Union[Failure, None]:
        """Why it was read no further; None where all of it was."""
        failure = self._core.failure()
        return None if failure is None else Failure(*failure)

    @property
    def findings(self) -> list[Finding]:
        """Values outside of their ranges, the first 16 of them."""
        return [Finding(*finding) for finding in self._core.findings()]

    @property
    def finding_count(self) -> int:
        """How many there are."""
        return cast(int, self._core.finding_count())

    @property
    def ending(self) -> str:
        """What stands where the unit ends: sound, no_stop_bit, cabac_zero_words, bytes_behind, or unknown."""
        return cast(str, self._core.ending())

    @property
    def bits(self) -> int:
        """Where reading ended: of a slice, the first bit of its data."""
        return cast(int, self._core.bits())

    @property
    def sound(self) -> bool:
        """Nothing failed, and no value lies outside of its range."""
        return not self._core.failed() and self._core.finding_count() == 0

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
        return [Element(*element) for element in self._core.trace()[0]]

    def check(self) -> "Reading":
        """Itself, where nothing failed; else raises H264Error."""
        failure = self.failure
        if failure is not None:
            raise H264Error(f"unit {self.unit.number} at {self.unit.offset}: {failure.text}", failure, self.unit)
        return self


# Sources


def _is_buffer(source: object) -> bool:
    try:
        memoryview(source)  # type: ignore[arg-type]
        return True
    except TypeError:
        return False


def _pieces_of(file: BinaryIO) -> Iterator[bytes]:
    while piece := file.read(_PIECE):
        yield piece


def _pieces_of_path(path: str) -> Iterator[bytes]:
    with open(path, "rb") as file:
        yield from _pieces_of(file)


def _mapped(path: str) -> Any:
    """The bytes of a file; one that cannot be mapped, for it is empty or a pipe, comes in pieces."""
    with open(path, "rb") as file:
        try:
            return _mmap.mmap(file.fileno(), 0, access=_mmap.ACCESS_READ)
        except (ValueError, OSError):
            return _pieces_of_path(path)


def _bytes_of(piece: Any) -> bytes:
    return bytes(memoryview(piece[0] if isinstance(piece, tuple) else piece))


def _recognise(head: Any) -> Framing:
    framing, why = _core.recognise_framing(head)
    if framing is None:
        raise H264Error(f"{why}; if it is a stream, name its framing")
    return cast(Framing, framing.name)


def _recognise_pieces(pieces: Iterator[Piece]) -> tuple[Framing, Iterator[Piece]]:
    taken: list[Piece] = []
    head = bytearray()
    for most in (_HEAD, _LONGEST_HEAD):
        while len(head) < most:
            piece = next(pieces, _AT_END)
            if piece is _AT_END:
                break
            piece = cast(Piece, piece)
            taken.append(piece)
            head += _bytes_of(piece)
        try:
            return _recognise(bytes(head)), _chain(taken, pieces)
        except H264Error:
            if len(head) < most or most == _LONGEST_HEAD:
                raise
    raise AssertionError


def _opened(source: Source, framing: Union[Framing, None]) -> tuple[Any, bool, Any, Framing]:
    """What the extension reads: the object, whether it gives pieces, and the framing."""
    if isinstance(source, (str, _os.PathLike)):
        source = _mapped(_os.fspath(source))
    if framing is not None and framing not in _core.Framing.__members__:
        raise ValueError(f"{framing!r} is no framing; they are {', '.join(_core.Framing.__members__)}")
    if _is_buffer(source):
        known = framing or _recognise(source)
        return source, False, _core.Framing.__members__[known], known
    if not hasattr(source, "read") and not hasattr(source, "__iter__"):
        raise TypeError(f"no source of bytes: {type(source).__name__}")
    pieces = _pieces_of(cast(BinaryIO, source)) if hasattr(source, "read") else iter(cast(Iterable[Piece], source))
    known = framing
    if known is None:
        known, pieces = _recognise_pieces(cast(Iterator[Piece], pieces))
    return pieces, True, _core.Framing.__members__[known], known


def recognise_framing(source: Source) -> Framing:
    """The framing of a stream, by its head. H264Error where it is none, with what it is instead, if that is known. Of a file
    or an iterable the head is taken.

    >>> orv_h264.recognise_framing(bytes.fromhex("00000002 0910 00000005 65888040 00"))
    'length_4'
    """
    return _opened(source, None)[3]


# Reading


def _all_of(feed: Any) -> Iterator[Any]:
    while batch := feed.next_batch():
        yield from batch


@overload
def units(source: Source, framing: Union[Framing, None] = None, *, gaps: Literal[False] = False,
          max_unit: int = _MOST_UNIT_BYTES) -> Iterator[Unit]: ...
@overload
def units(source: Source, framing: Union[Framing, None] = None, *, gaps: bool,
          max_unit: int = _MOST_UNIT_BYTES) -> Iterator[Union[Unit, Gap]]: ...
def units(source: Source, framing: Union[Framing, None] = None, *, gaps: bool = False,
          max_unit: int = _MOST_UNIT_BYTES) -> Iterator[Any]:
    """The NAL units of a stream in their order, and where `gaps` is set what belongs to no unit. A unit of more than
    `max_unit` bytes is a gap.

    >>> for unit in orv_h264.units(bytes.fromhex("00000109100000010b"), "annex_b"):
    ...     print(unit.offset, unit.framing_size, unit.nal_unit_type, unit.data.hex())
    3 3 9 0910
    8 3 11 0b
    """
    object_, pieces, how, _ = _opened(source, framing)
    return _all_of(_core.UnitFeed(object_, pieces, how, max_unit, gaps))


def read(source: Source, framing: Union[Framing, None] = None, *, strict: bool = False,
         max_unit: int = _MOST_UNIT_BYTES) -> Iterator[Reading]:
    """The units of a stream, each read with the parameter sets that are active for it. Damaged bytes are told by
    Reading.failure; where `strict` is set they raise H264Error.

    >>> [reading] = orv_h264.read(bytes.fromhex("00000001 0950"))
    >>> reading.rbsp
    access_unit_delimiter_rbsp(primary_pic_type=2)
    """
    object_, pieces, how, _ = _opened(source, framing)
    readings = map(Reading, _all_of(_core.ReadingFeed(object_, pieces, how, max_unit)))
    return map(Reading.check, readings) if strict else readings


def read_unit(unit: Buffer, context: Union[Context, None] = None) -> Reading:
    """Reads one unit by itself, its header byte first; with the context of another reading, where it is a slice or an SEI
    unit.

    >>> orv_h264.read_unit(b"\\x09\\x50").rbsp.primary_pic_type
    2
    """
    return Reading(_core.read_unit(unit, (context or Context())._core))


# Pictures


def _fraction(of: tuple[int, int]) -> Union[Fraction, None]:
    return Fraction(*of) if of[1] else None


@dataclass(frozen=True)
class AccessUnit:
    """The units of a primary coded picture, and what goes with them."""

    number: int
    "From 0, in decoding order."
    units: tuple[Unit, ...]
    roles: tuple[str, ...]
    "Of each unit: delimiter, parameter_set, sei, prefix, primary, redundant, auxiliary, layer, end or other."
    has_picture: bool
    structure: str
    "frame, mbaff_frame, top_field or bottom_field."
    idr: bool
    nal_ref_idc: int
    slice_types: tuple[str, ...]
    "Of its primary slices: P, B, I, SP, SI."
    findings: tuple[str, ...]
    "What it lacks, in English."
    damaged: bool
    "A unit of it could not be read to its end."
    picture: Union[int, None]
    "The number of its picture in decoding order."
    decoding_stamp: Union[Fraction, None]
    "The timestamp of the piece that it begins in, in seconds."
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
    "From 0, in decoding order."
    output_number: Union[int, None]
    "From 0, in output order; None where it came too late to be told."
    access_units: tuple[AccessUnit, ...]
    offset: int
    "Where the first unit of it begins in the stream, behind its framing."
    end: int
    structure: str
    "frame, mbaff_frame, both_fields, top_field or bottom_field."
    first_field: str
    "Of both_fields: top_field or bottom_field; else as `structure`."
    nal_ref_idc: int
    slice_types: tuple[str, ...]
    idr: bool
    recovery_point: bool
    discarded: bool
    "A decoder does not output it: no_output_of_prior_pics_flag of the next IDR picture."
    sequence: int
    "Pictures with a lower one are output before it."
    counts: Union[tuple[int, int], None]
    "TopFieldOrderCnt and BottomFieldOrderCnt, where they are known."
    fields_shown: int
    "How long it is shown, in fields."
    time_source: str
    "hrd, constant_rate, caller, assumed_rate or none: where the three times come from."
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
        return self.idr or self.recovery_point

    @property
    def poc(self) -> Union[int, None]:
        """PicOrderCnt, the lower one of both counts."""
        return None if self.counts is None else min(self.counts)

    @property
    def units(self) -> tuple[Unit, ...]:
        """The units of its access units."""
        return tuple(unit for access_unit in self.access_units for unit in access_unit.units)


def _access_unit(of: dict[str, Any]) -> AccessUnit:
    for name in ("decoding_stamp", "presentation_stamp"):
        of[name] = _fraction(of[name])
    return AccessUnit(**of)


def _picture(of: dict[str, Any]) -> Picture:
    for name in ("decoding_time", "presentation_time", "duration", "decoding_stamp", "presentation_stamp"):
        of[name] = _fraction(of[name])
    of["access_units"] = tuple(map(_access_unit, of["access_units"]))
    of["clocks"] = tuple(Clock(*clock) for clock in of["clocks"])
    return Picture(**of)


def _picture_feed(source: Source, framing: Union[Framing, None], wanted: Any, mode: str, clock: int, clock_bits: int,
                  max_unit: int) -> Any:
    object_, pieces, how, _ = _opened(source, framing)
    return _core.PictureFeed(object_, pieces, how, max_unit, wanted, _core.OutputMode.__members__[mode], clock,
                             clock_bits)


def access_units(source: Source, framing: Union[Framing, None] = None, *, clock: int = 90000, clock_bits: int = 64,
                 max_unit: int = _MOST_UNIT_BYTES) -> Iterator[AccessUnit]:
    """The access units of a stream in decoding order. Where pieces come with timestamps, these are of a clock of `clock` units a
    second, and begin again behind `clock_bits` bits: 32 in RTP, 33 in MPEG-2 systems.

    >>> pieces = [(bytes.fromhex("00000001 0910 00000001 0b"), 900, None), (bytes.fromhex("00000001 0910"), 4500, None)]
    >>> [(len(unit.units), unit.roles[-1]) for unit in orv_h264.access_units(pieces, "annex_b")]
    [(2, 'end'), (1, 'delimiter')]
    """
    return map(_access_unit, _all_of(_picture_feed(source, framing, _core.Wanted.access_units, "early", clock,
                                                   clock_bits, max_unit)))


def pictures(source: Source, framing: Union[Framing, None] = None, *, order: Literal["output", "decoding"] = "output",
             mode: Literal["early", "bumping", "when_decoded"] = "early", clock: int = 90000, clock_bits: int = 64,
             max_unit: int = _MOST_UNIT_BYTES) -> Iterator[Picture]:
    """The pictures of a stream with their order and times, in output order or in decoding order. `mode` says how late a picture
    is output: as early as its order is certain, as late as clause C.4 lets a decoder, or at once.

    >>> list(orv_h264.pictures(b"\\x00\\x00\\x01\\x09\\x10"))
    []
    """
    if order not in ("output", "decoding"):
        raise ValueError(f"{order!r} is no order; there are output and decoding")
    wanted = _core.Wanted.output if order == "output" else _core.Wanted.decoded
    return map(_picture, _all_of(_picture_feed(source, framing, wanted, mode, clock, clock_bits, max_unit)))


frames = pictures


def info(source: Source, framing: Union[Framing, None] = None, *, name: Union[str, None] = None,
         max_unit: int = _MOST_UNIT_BYTES) -> dict[str, Any]:
    """What a stream is: the object that `orv-h264 info --json` prints, which docs/schema/info.schema.json describes. `name` is
    its member `file`. Containers are not read.

    >>> orv_h264.info(bytes.fromhex("00000001 0910"), name="a delimiter")["nal_units"][0]["units"]
    1
    """
    if name is None:
        name = _os.fspath(source) if isinstance(source, (str, _os.PathLike)) else getattr(source, "name", "")
    object_, pieces, how, _ = _opened(source, framing)
    return cast(dict[str, Any], _json.loads(_core.info(object_, pieces, how, max_unit, str(name))))


# Writing


def _written(result: tuple[Any, ...]) -> bytes:
    if result[0] is None:
        failure = Failure(*result[1])
        raise H264Error(failure.text if len(result) < 3 else f"{result[2]}: {failure.text}", failure)
    return cast(bytes, result[0])


def unescape(unit: Buffer) -> bytes:
    """The bytes of a unit without its emulation-prevention bytes.

    >>> orv_h264.unescape(bytes.fromhex("0900000301")).hex()
    '09000001'
    """
    return cast(bytes, _core.unescape(unit))


def frame(unit: Buffer, framing: Framing = "annex_b") -> bytes:
    """A unit with a start code of four bytes, or its length, before it.

    >>> orv_h264.frame(b"\\x09\\x10", "length_2").hex()
    '00020910'
    """
    data = bytes(unit)
    if framing == "annex_b":
        return b"\0\0\0\1" + data
    size = {"length_1": 1, "length_2": 2, "length_3": 3, "length_4": 4}[framing]
    if len(data) >> 8 * size:
        raise ValueError(f"a unit of {len(data)} bytes is longer than a prefix of {size} can say")
    return len(data).to_bytes(size, "big") + data


def write(header: nal_unit_header, rbsp: Union[Structure, None] = None, context: Union[Context, None] = None, *,
          data_of: Union[Reading, None] = None) -> bytes:
    """A unit of its header and its RBSP, with emulation prevention and without framing. A slice takes its data from
    `data_of`, the reading of the slice that it was; without that it ends before its data. H264Error where a member does
    not fit its element.

    >>> from orv_h264 import structures
    >>> header = structures.nal_unit_header(nal_unit_type=9)
    >>> orv_h264.write(header, structures.access_unit_delimiter_rbsp(primary_pic_type=2)).hex()
    '0950'
    """
    old = (None, 0) if data_of is None else (data_of.unit, data_of.bits)
    if context is None:
        context = data_of.context if data_of is not None else Context()
    return _written(_core.write_unit(header, rbsp, context._core, *old))


def edit(unit: Union[Buffer, Reading], path: Union[str, Mapping[str, int]], value: Union[int, None] = None,
         context: Union[Context, None] = None) -> bytes:
    """A unit with another value of an element, or of several, given as a mapping. A path is the element's name, with its
    indices and as many of the structures around it as tell it apart: "time_scale", "vui_parameters.time_scale",
    "offset_for_ref_frame[2]". A slice or an SEI unit needs its context, which a Reading brings along. The data of a slice
    stay what they were. H264Error where it cannot be done.

    >>> orv_h264.edit(b"\\x09\\x10", "primary_pic_type", 2).hex()
    '0950'
    """
    values: dict[str, int] = dict(path) if isinstance(path, Mapping) else {path: cast(int, value)}
    if isinstance(unit, Reading):
        context = context or unit.context
        unit = unit.unit
    return _written(_core.edit_unit(unit, list(values.items()), (context or Context())._core))


# Parameter sets


@dataclass
class DecoderConfiguration:
    """AVCDecoderConfigurationRecord of ISO/IEC 14496-15: the box avcC of MP4, CodecPrivate of Matroska."""

    configurationVersion: int = 1
    AVCProfileIndication: int = 0
    profile_compatibility: int = 0
    AVCLevelIndication: int = 0
    lengthSizeMinusOne: int = 3
    sequenceParameterSetNALUnit: list[bytes] = field(default_factory=list)
    pictureParameterSetNALUnit: list[bytes] = field(default_factory=list)
    extension_present: bool = False
    chroma_format: int = 1
    bit_depth_luma_minus8: int = 0
    bit_depth_chroma_minus8: int = 0
    sequenceParameterSetExtNALUnit: list[bytes] = field(default_factory=list)
    behind: bytes = b""
    "Bytes behind the record, which are not written."

    @classmethod
    def read(cls, record: Buffer) -> "DecoderConfiguration":
        """Reads a record without the header of a box. H264Error where it ends too early or has another version."""
        made, failure = _core.read_record(record)
        if failure is not None:
            raise H264Error(": ".join(failure))
        return cls(**made)

    def write(self) -> bytes:
        """The bytes of the record.

        >>> orv_h264.DecoderConfiguration(AVCProfileIndication=66, AVCLevelIndication=10).write().hex()
        '0142000affe000'
        """
        made, failure = _core.write_record(_asdict(self))
        if failure is not None:
            raise H264Error(": ".join(failure))
        return cast(bytes, made)

    @property
    def framing(self) -> Framing:
        """Of the samples that it goes with."""
        return cast(Framing, f"length_{self.lengthSizeMinusOne + 1}")


class ParameterSetStore:
    """The latest parameter sets of each id, as bytes: for who puts them into a record, or before pictures.

    >>> store = orv_h264.ParameterSetStore()
    >>> store.push(b"\\x09\\x10")
    'no_set'
    """

    __slots__ = ("_core",)

    def __init__(self) -> None:
        self._core = _core.ParameterSetStore()

    def push(self, unit: Buffer) -> str:
        """The next unit of a stream: no_set, added, changed, same, damaged, too_long or no_memory."""
        return cast(str, self._core.push(unit))

    def push_configuration(self, record: DecoderConfiguration) -> int:
        """All sets of a record. Returns how many were not kept."""
        return cast(int, self._core.push_record(_asdict(record)))

    @property
    def changes(self) -> int:
        """How many times a set was added or changed."""
        return cast(int, self._core.changes())

    def all(self) -> list[bytes]:
        """Those in force, in the order in which they are written."""
        return cast(list[bytes], self._core.all())

    def of_sps(self, seq_parameter_set_id: int) -> list[bytes]:
        """The SPS of an id, and what names it."""
        return cast(list[bytes], self._core.of_sps(seq_parameter_set_id))

    def make_configuration(self, length_size: int = 4, seq_parameter_set_id: Union[int, None] = None) -> DecoderConfiguration:
        """The record that goes with the sets, or with those of an SPS. H264Error where there is no one record for them."""
        made, failure = (self._core.make_record(length_size) if seq_parameter_set_id is None else
                         self._core.make_record_of(seq_parameter_set_id, length_size))
        if failure is not None:
            raise H264Error(": ".join(text for text in failure if text))
        return DecoderConfiguration(**made)

    def write_picture(self, units: Iterable[Buffer], framing: Framing = "annex_b",
                      sets: Literal["as_found", "before_idr", "left_out"] = "before_idr") -> bytes:
        """The units of the next picture in a framing, and takes its parameter sets. With before_idr an IDR picture that lacks
        sets gets those in force, with left_out those that a record has go."""
        return cast(bytes, self._core.write_picture(units, _core.Framing.__members__[framing],
                                                    _core.InBandSets.__members__[sets]))


# What follows from parameter sets


def coded_size(sps: SequenceParameterSet) -> tuple[int, int]:
    """Width and height of a frame as it is decoded, in luma samples.

    >>> from orv_h264.structures import seq_parameter_set_data
    >>> orv_h264.coded_size(seq_parameter_set_data(pic_width_in_mbs_minus1=10, pic_height_in_map_units_minus1=8,
    ...                                            frame_mbs_only_flag=True))
    (176, 144)
    """
    return cast(tuple[int, int], _core.coded_size(sps))


def cropped_size(sps: SequenceParameterSet) -> tuple[int, int]:
    """Width and height of a frame as it is output; (0, 0) where the cropping leaves nothing."""
    return cast(tuple[int, int], _core.cropped_size(sps))


def chroma_subsampling(sps: SequenceParameterSet) -> tuple[int, int]:
    """SubWidthC and SubHeightC; (1, 1) where there is no chroma to a picture."""
    return cast(tuple[int, int], _core.chroma_subsampling(sps))


def sample_aspect_ratio(sps: SequenceParameterSet) -> Union[tuple[int, int], None]:
    """Width to height of a sample as it is sent; None where it is unspecified."""
    ratio = cast(tuple[int, int], _core.sample_aspect_ratio(sps))
    return ratio if ratio[1] else None


def field_rate(sps: SequenceParameterSet) -> Union[Fraction, None]:
    """Fields in a second; None where it is not sent."""
    return _fraction(_core.field_rate(sps))


def frame_rate(sps: SequenceParameterSet) -> Union[Fraction, None]:
    """Frames in a second: half the field rate.

    >>> from orv_h264.structures import seq_parameter_set_data, vui_parameters
    >>> timing = vui_parameters(timing_info_present_flag=True, num_units_in_tick=1001, time_scale=60000)
    >>> orv_h264.frame_rate(seq_parameter_set_data(vui_parameters_present_flag=True, vui_parameters=timing))
    Fraction(30000, 1001)
    """
    return _fraction(_core.frame_rate(sps))


def bit_depths(sps: SequenceParameterSet) -> tuple[int, int]:
    """BitDepthY and BitDepthC."""
    return cast(tuple[int, int], _core.bit_depths(sps))


def profile_name(sps: SequenceParameterSet) -> str:
    """The name of the profile, its constraint flags considered: "Constrained Baseline"; "" for one without a name."""
    return cast(str, _core.profile_name(sps))


def codec_string(sps: SequenceParameterSet) -> str:
    """The codec as RFC 6381 writes it: "avc1.64001F"."""
    return cast(str, _core.codec_string(sps))


def level_limits(sps: SequenceParameterSet) -> Union[dict[str, Any], None]:
    """The row of Table A-1 that the level is, its name ("1b", "4.1") too; None for a level that it does not have."""
    return cast(Union[dict[str, Any], None], _core.level_limits(sps))


def max_dpb_frames(sps: SequenceParameterSet) -> int:
    """MaxDpbFrames, A.3.1 h)."""
    return cast(int, _core.max_dpb_frames(sps))


def most_buffered_frames(sps: SequenceParameterSet) -> int:
    """max_dec_frame_buffering, or what is inferred for it."""
    return cast(int, _core.most_buffered_frames(sps))


def most_reordered_frames(sps: SequenceParameterSet) -> int:
    """max_num_reorder_frames, or what is inferred for it."""
    return cast(int, _core.most_reordered_frames(sps))


def scaling_lists(sps: SequenceParameterSet,
                  pps: Union[pic_parameter_set_rbsp, None] = None) -> tuple[list[list[int]], list[list[int]]]:
    """The six 4x4 lists and the six 8x8 lists that hold for the pictures of a PPS, in zig-zag order."""
    return cast(tuple[list[list[int]], list[list[int]]], _core.scaling_lists(sps, pps))


def slice_group_map(sps: SequenceParameterSet, pps: pic_parameter_set_rbsp,
                    slice_group_change_cycle: int = 0) -> Union[bytes, None]:
    """mapUnitToSliceGroupMap, a byte each; None where slice_group_id does not have as many entries."""
    return cast(Union[bytes, None], _core.slice_group_map(sps, pps, slice_group_change_cycle))


class Schedule(NamedTuple):
    """An alternative of hrd_parameters: bits in a second, bits of the buffer, and whether the rate is constant."""

    bit_rate: int
    cpb_size: int
    cbr: bool


def schedules(hrd: hrd_parameters) -> list[Schedule]:
    """BitRate and CpbSize of the alternatives."""
    return [Schedule(*schedule) for schedule in _core.schedules(hrd)]
