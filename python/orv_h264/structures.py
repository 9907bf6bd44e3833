"""The structures of H.264 as Python types, under their names in the standard."""

from ._core import structures as _structures

__all__ = sorted(name for name in vars(_structures) if not name.startswith("_"))
globals().update((name, getattr(_structures, name)) for name in __all__)
