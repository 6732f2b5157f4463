"""Entry points by name, with the typed arguments and record fields of ``tavrin run``."""

import collections
import os

from . import _core
from ._core import native
from .item import Item

Result = collections.namedtuple("Result", "value outputs item")
Result.__doc__ = """What a call gave: ``value`` the entry point's returned word (a number, a text,
an Item, True for a pointer that is set, or None), ``outputs`` what its buffer, number and record
arguments hold afterwards (texts as ``tavrin run`` prints them), ``item`` the current item."""


def entries():
    """Every name ``call`` takes: the entry points, then the host's own commands."""
    with _core.lock:
        return list(native.entry_names()) + list(native.host_commands())


def _word(name, value):
    if isinstance(value, Item):
        return (str(value.id), False)
    if value is None:
        return ("null", False)
    if isinstance(value, bool):
        return ("1" if value else "0", False)
    if isinstance(value, int):
        return (str(value), False)
    if isinstance(value, float):
        return (repr(value), False)
    if isinstance(value, (str, os.PathLike)):
        return (os.fspath(value), True)
    raise TypeError(f"{name}: an argument is a number, a text, an Item or None, not {type(value).__name__}")


def _value(word):
    if word == "null":
        return None
    if word == "set":
        return True
    if word.startswith("item "):
        return Item(int(word[5:]))
    if len(word) >= 2 and word[0] == '"' and word[-1] == '"':
        return word[1:-1]
    try:
        return int(word)
    except ValueError:
        return float(word)


def call(name, *args, **fields):
    """Calls an entry point by name (with or without "dl_"): positional arguments in order,
    record fields by name. Fields given to a Set... entry change the record its Get... entry
    answers, so that the other fields keep their values. An error the library reports raises
    ``tavrin.Error``; an unknown name ValueError, wrong arguments TypeError or ValueError."""
    if not isinstance(name, str):
        raise TypeError("call: the name is a text")
    words = [_word(name, a) for a in args]
    field_words = [(key, _word(name, value)[0]) for key, value in fields.items()]
    bare = name[3:] if name.startswith("dl_") else name
    with _core.lock:
        _core.take_errors()
        if field_words and bare.startswith("Set") and "Get" + bare[3:] in native.entry_names():
            try:
                native.call("Get" + bare[3:], [], [])
            except TypeError:
                pass  # a Get... that needs arguments of its own: the record stays as it is
        returned, value, outputs = native.call(name, words, field_words)
        errors = _core.take_errors()
        current = native.current_id()
    if errors:
        raise _core.Error(errors[0][0], errors[0][1], errors)
    return Result(_value(value) if returned else None, list(outputs), None if current is None else Item(current))
