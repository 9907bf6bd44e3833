import copy
import pickle

import pytest
from orv_h264 import structures
from orv_h264.structures import (List, Structure, pic_parameter_set_rbsp, scalable_nesting, sei_message, sei_rbsp,
                                 seq_parameter_set_data, seq_parameter_set_rbsp, subset_seq_parameter_set_rbsp,
                                 user_data_unregistered, vui_parameters)

TYPES = [t for t in (getattr(structures, name) for name in structures.__all__) if t.__mro__[1] is Structure]


def other_value(kind, lowest, highest):
    if kind == "bool":
        return True
    if kind == "int":
        return highest
    if kind == "bytes":
        return bytes(range(16))
    return "label" if kind == "str" else None


@pytest.mark.parametrize("type_", TYPES, ids=lambda t: t.__name__)
def test_every_structure(type_):
    fresh = type_()
    assert fresh == type_() and not fresh != type_()
    assert type_(**fresh.to_dict()) == fresh
    assert repr(fresh) == f"{type_.__name__}()"
    assert type_.__doc__
    for name, kind, lowest, highest, _ in type_._members():
        assert name in dir(fresh)
        value = other_value(kind, lowest, highest)
        if value is None:
            getattr(fresh, name)
            continue
        before = getattr(fresh, name)
        setattr(fresh, name, value)
        assert getattr(fresh, name) == value
        assert type_(**{name: value}).to_dict()[name] == value
        if kind == "int":
            for wrong in (highest + 1, lowest - 1, 1 << 200, -(1 << 200)):
                with pytest.raises(OverflowError, match=name):
                    setattr(fresh, name, wrong)
        for wrong in (None, 1.5, object(), {}, [1.5], "x" if kind != "str" else 3):
            with pytest.raises((TypeError, ValueError)):
                setattr(fresh, name, wrong)
        assert getattr(fresh, name) == value
        with pytest.raises(AttributeError):
            delattr(fresh, name)
        if before != value:
            assert fresh != type_()
        setattr(fresh, name, before)
    assert fresh == type_()
    for again in (fresh.copy(), copy.copy(fresh), copy.deepcopy(fresh), pickle.loads(pickle.dumps(fresh)),
                  eval(repr(fresh), vars(structures))):
        assert again == fresh and again is not fresh
    with pytest.raises(TypeError):
        type_(no_such_member=1)
    with pytest.raises(TypeError):
        type_(1)
    with pytest.raises(AttributeError):
        fresh.no_such_member = 1
    with pytest.raises(TypeError):
        hash(fresh)


def test_there_are_all_of_them():
    assert len(TYPES) > 150
    assert sum(len(t._members()) for t in TYPES) > 1000


def test_nested_members_are_the_structure_s_own():
    sps = seq_parameter_set_rbsp()
    vui = sps.seq_parameter_set_data.vui_parameters
    vui.time_scale = 50
    assert sps.seq_parameter_set_data.vui_parameters.time_scale == 50
    del sps
    assert vui.time_scale == 50
    other = seq_parameter_set_data()
    other.vui_parameters = vui
    vui.time_scale = 60
    assert other.vui_parameters.time_scale == 50


def test_lists_are_lists():
    pps = pic_parameter_set_rbsp()
    assert list(pps.top_left) == [0] * 8 and pps.top_left == [0] * 8
    pps.top_left[2] = 7
    pps.top_left[-1] = 9
    assert pps.top_left == (0, 0, 7, 0, 0, 0, 0, 9)
    assert pps.top_left[2:4] == [7, 0]
    pps.top_left[0:2] = [1, 2]
    assert pps.top_left[0:3] == [1, 2, 7]
    pps.top_left = [5]
    assert pps.top_left == [5] + [0] * 7
    assert 5 in pps.top_left and len(pps.top_left) == 8
    for wrong in (lambda: pps.top_left.append(1), lambda: pps.top_left.clear(), lambda: pps.top_left.__delitem__(0)):
        with pytest.raises(TypeError):
            wrong()
    for index in (8, -9, 1 << 80):
        with pytest.raises(IndexError):
            pps.top_left[index]
        with pytest.raises(IndexError):
            pps.top_left[index] = 1
    with pytest.raises(ValueError):
        pps.top_left = range(9)
    with pytest.raises(TypeError):
        List()


def test_lists_that_grow():
    scale = pic_parameter_set_rbsp().lists[0].delta_scale
    for value in range(64):
        scale.append(value)
    with pytest.raises(ValueError):
        scale.append(1)
    assert scale.pop() == 63 and scale.pop(0) == 0 and len(scale) == 62
    scale.insert(0, -5)
    del scale[1:60]
    scale.extend(iter([3, 4]))
    assert scale == [-5, 60, 61, 62, 3, 4]
    with pytest.raises(OverflowError):
        scale.append(1 << 20)
    with pytest.raises(OverflowError):
        scale.extend([1, 1 << 20])
    assert len(scale) == 6
    scale.clear()
    assert scale == [] and not scale


def test_bits_and_bytes():
    subset = subset_seq_parameter_set_rbsp()
    flags = subset.additional_extension2_data_flag
    flags.append(True)
    flags.extend([False, True])
    flags[1] = 1
    assert subset.additional_extension2_data_flag == [True, True, True]
    with pytest.raises(OverflowError):
        flags[0] = 2
    data = user_data_unregistered(uuid_iso_iec_11578=bytearray(16), user_data_payload_byte=memoryview(b"ab"))
    assert data.user_data_payload_byte == b"ab" and data.uuid_iso_iec_11578 == bytes(16)
    with pytest.raises(ValueError):
        data.uuid_iso_iec_11578 = b"short"
    region = structures.ar_label_update(ar_label="\udcff\u00e9")
    assert region.ar_label == "\udcff\u00e9"
    with pytest.raises(ValueError):
        region.ar_label = "a\0b"


def test_an_entry_that_goes_is_told():
    views = structures.seq_parameter_set_mvc_extension().views
    views.extend([structures.mvc_view(view_id=i) for i in range(3)])
    last = views[2]
    references = last.references.anchor_ref_l0
    references.append(4)
    assert views[2].references.anchor_ref_l0 == [4]
    views.pop(0)
    for wrong in (lambda: last.view_id, lambda: references[0], lambda: len(references), lambda: references.append(1),
                  lambda: repr(last), lambda: last.to_dict(), lambda: last.copy(), lambda: last == views[0],
                  lambda: setattr(last, "view_id", 3), lambda: list(references)):
        with pytest.raises(ReferenceError):
            wrong()
    views.append(structures.mvc_view(view_id=9))
    assert last.view_id == 9


def test_choices():
    message = sei_message()
    assert type(message.payload).__name__ == "payload_bytes"
    payload = message.payload
    message.payload = structures.recovery_point(recovery_frame_cnt=3)
    assert message.payload.recovery_frame_cnt == 3
    with pytest.raises(ReferenceError):
        payload.payload_byte
    message.payload.recovery_frame_cnt = 4
    assert message.to_dict()["payload"] == {"structure": "recovery_point", "recovery_frame_cnt": 4,
                                            "exact_match_flag": False, "broken_link_flag": False,
                                            "changing_slice_group_idc": 0}
    assert sei_message(**message.to_dict()) == message
    for wrong in (None, vui_parameters(), {"structure": "vui_parameters"}, {"structure": 3}, {}, 3):
        with pytest.raises(TypeError):
            message.payload = wrong
    assert message.payload.recovery_frame_cnt == 4
    data = structures.registered_user_data()
    assert data.data is None
    data.data = structures.afd_data(active_format=8)
    assert structures.registered_user_data(**data.to_dict()) == data
    data.data = None
    assert data.data is None


def test_a_structure_may_be_given_a_part_of_itself():
    nest = scalable_nesting(messages=[sei_message(payload=structures.recovery_point(recovery_frame_cnt=3))])
    outer = sei_message(payload=nest)
    outer.payload = outer.payload.messages[0].payload
    assert outer.payload.recovery_frame_cnt == 3
    outer = sei_message(payload=nest)
    whole = sei_rbsp(sei_messages=[outer])
    whole.sei_messages[0] = whole.sei_messages[0].payload.messages[0]
    assert whole.sei_messages[0].payload.recovery_frame_cnt == 3
    messages = whole.sei_messages
    messages.extend(messages)
    assert len(messages) == 2


def test_messages_nest_to_a_bound():
    message = sei_message()
    with pytest.raises(ValueError, match="lie in one another"):
        for _ in range(100000):
            message = sei_message(payload=scalable_nesting(messages=[message]))
    root = sei_message(payload=scalable_nesting(messages=[sei_message()]))
    with pytest.raises(ValueError, match="lie in one another"):
        for _ in range(100000):
            copied = root.copy()
            copied.payload.messages[0].payload = root.payload
            root = copied
    loop = []
    loop.append(loop)
    for wrong in (loop, {"payload": {"structure": "scalable_nesting", "messages": loop}}):
        with pytest.raises((ValueError, TypeError)):
            sei_rbsp(sei_messages=wrong)


def test_values_that_run_code_cannot_do_harm():
    views = structures.seq_parameter_set_mvc_extension().views
    views.extend([structures.mvc_view() for _ in range(50)])

    class Evil:
        def __index__(self):
            views.clear()
            return 3

        def __iter__(self):
            views.clear()
            return iter([1, 2])

    entry = views[40]
    with pytest.raises(ReferenceError):
        entry.view_id = Evil()
    views.extend([structures.mvc_view() for _ in range(50)])
    with pytest.raises(ReferenceError):
        views[40].references.anchor_ref_l0 = Evil()
    views.extend([structures.mvc_view() for _ in range(50)])
    with pytest.raises(IndexError):
        views[40] = {"view_id": Evil()}


def test_structure_is_a_base_alone():
    with pytest.raises(TypeError):
        Structure()

    class Mine(Structure):
        pass

    with pytest.raises(TypeError):
        Mine()
    with pytest.raises(TypeError):
        type("Mine", (vui_parameters,), {})
