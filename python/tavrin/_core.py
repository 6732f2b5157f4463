"""The session of the package: one library per process, one lock, errors and questions."""

import atexit
import getpass
import os
import threading
import warnings

from . import _tavrin as native

# The library keeps one process-wide state (data list, frame store, settings): every call into
# it takes this lock, so that threads of one process take turns. Parallel work is done by
# processes, each with its own library.
lock = threading.RLock()


class Error(Exception):
    """A numbered error the library reported: ``code`` is its number, ``text`` its text, and
    ``errors`` every (code, text) pair the call reported, in order."""

    def __init__(self, code, text, errors=()):
        super().__init__(f"{text} ({code})")
        self.code = code
        self.text = text
        self.errors = list(errors) or [(code, text)]

    def __reduce__(self):
        return (Error, (self.code, self.text, self.errors))


class TavrinWarning(UserWarning):
    """An error the library reported on the way to a result that came all the same (an open
    whose item arrived)."""

    def __init__(self, code, text):
        super().__init__(f"{text} ({code})")
        self.code = code
        self.text = text

    def __reduce__(self):
        return (TavrinWarning, (self.code, self.text))


ItemErased = native.ItemErased


def take_errors():
    return [(int(code), text) for code, text in native.take_errors()]


def run(function, *args):
    """Runs a native function under the lock; an error the library reported raises Error."""
    with lock:
        take_errors()
        result = function(*args)
        errors = take_errors()
    if errors:
        raise Error(errors[0][0], errors[0][1], errors)
    return result


def warn(errors, about, stacklevel=3):
    for code, text in errors:
        warnings.warn(TavrinWarning(code, f"{about}: {text}"), stacklevel=stacklevel)


_BUTTON_WORDS = ("yes", "no", "ok", "cancel")


def answers(policy=None):
    """Sets how the library's questions are answered.

    ``None``: each question's default button (the start-up policy). ``"yes"``, ``"no"``,
    ``"ok"`` or ``"cancel"``: that answer to every question. A list: the answers in turn (words
    as above, numbers and texts for value entries and file dialogs), then the default buttons.
    A callable ``policy(text, buttons)``: it is given the question's text and its buttons (a
    tuple of the words above) and answers one of them, or None for the default button.
    """
    with lock:
        native.clear_answers()
        if policy is None:
            native.set_policy(None)
        elif isinstance(policy, str):
            if policy not in _BUTTON_WORDS:
                raise ValueError(f"answers: {policy!r} is none of {', '.join(_BUTTON_WORDS)}")
            native.set_policy(lambda text, caption, buttons, default: policy)
        elif callable(policy):
            native.set_policy(lambda text, caption, buttons, default: policy(text, buttons))
        elif isinstance(policy, (list, tuple)):
            native.set_policy(None)
            native.queue_answers(list(policy))
        else:
            raise TypeError(f"answers: a word, a list or a callable, not {type(policy).__name__}")


def log_lines():
    with lock:
        return list(native.log_lines())


def _start():
    try:
        user = getpass.getuser()
    except Exception:  # no login name: the library's own default
        user = ""
    # The library's start-up makes $TAVRIN_DATA the working directory, as the host's data
    # directory; in Python, relative paths stay relative to the interpreter's own directory.
    working = os.getcwd()
    started = native.start(user)
    os.chdir(working)
    if not started:
        raise ImportError("tavrin: the library did not start")
    atexit.register(_finish)


def _finish():
    with lock:
        native.finish()


_start()
