#!/usr/bin/python3
"""change_rate.py UNITS SCALE IN OUT   writes an Annex B stream again with another num_units_in_tick and time_scale in every SPS;
all other units go out as they came in. 1001 60000 is 29.97 frames a second.
"""

import sys

import orv_h264


def with_rate(unit: orv_h264.Unit, units: int, scale: int) -> orv_h264.Buffer:
    """The SPS with that rate; another unit as it is."""
    if unit.nal_unit_type != 7:
        return unit
    return orv_h264.edit(unit, {"vui_parameters_present_flag": 1, "timing_info_present_flag": 1,
                                "num_units_in_tick": units, "time_scale": scale})


def main() -> None:
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    units, scale = int(sys.argv[1]), int(sys.argv[2])
    try:
        with open(sys.argv[4], "wb") as out:
            for unit in orv_h264.units(sys.argv[3], "annex_b"):
                out.write(orv_h264.frame(with_rate(unit, units, scale)))
    except orv_h264.H264Error as error:
        sys.exit(f"change_rate: {error}")


if __name__ == "__main__":
    main()
