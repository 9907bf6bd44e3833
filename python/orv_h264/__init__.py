"""The syntax of H.264 streams: NAL units, headers, pictures, parameter sets, without decoding a picture."""

from . import _core

__version__: str = _core.version
