"""The syntax of H.264 streams: NAL units, headers, pictures, parameter sets, without decoding a picture."""

__version__: str
