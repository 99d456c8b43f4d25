"""A sound device for programs under Wine that keeps every sample it is given."""

import io
import os
import pathlib
import random
import wave


def wav_bytes(samples, channels=1, rate=22050, bits=8):
    file = io.BytesIO()
    with wave.open(file, "wb") as sound:
        sound.setparams((channels, bits // 8, rate, 0, "NONE", ""))
        sound.writeframes(samples)
    return file.getvalue()


def noise(count, seed=1):
    """Every byte value comes up, so that a wrong conversion shows."""
    return random.Random(seed).randbytes(count)


class NoDevice:
    def variables(self):
        return {"ALSA_CONFIG_PATH": "/nonexistent/asound.conf"}

    def environment(self):
        return {**os.environ, **self.variables()}


class Device(NoDevice):
    """A sound device that keeps what it is given."""

    def __init__(self, folder, real_time=None, append=False):
        self.kept = folder / "kept.raw"
        self.config = folder / "asound.conf"
        target = str(self.kept)
        if append:  # a program that opens the device again starts the file anew otherwise
            target = f"|cat >>{self.kept}"
        if real_time:
            drain = pathlib.Path(__file__).with_name("drain.py")
            target = f"|/usr/bin/python3 {drain} {real_time} {self.kept}"
        self.config.write_text("pcm.null { type null }\nctl.null { type null }\n"
                               f'pcm.!default {{ type file slave.pcm "null" file "{target}" format "raw" }}\n'
                               "ctl.!default { type null }\n")

    def variables(self):
        return {"ALSA_CONFIG_PATH": str(self.config)}

    def sound(self):
        return self.kept.read_bytes() if self.kept.exists() else b""


def assert_heard(device, samples, silence=b"\x80"):
    """The samples, exactly, and nothing but silence behind them."""
    heard = device.sound()
    if heard[:len(samples)] != samples:
        same = len(os.path.commonprefix([heard, samples]))
        raise AssertionError(f"{len(heard)} bytes heard, {len(samples)} wanted; from byte {same}: "
                             f"{heard[same:same + 32].hex()} and not {samples[same:same + 32].hex()}")
    assert heard[len(samples):].strip(silence) == b""


HEARINGS = 6  # at the most


def ran_dry(heard, samples, silence=b"\x80"):
    """Whether what was heard is the samples, whole and in their order, with nothing but pieces of silence between."""
    wanted = iter(samples)
    next_one = next(wanted, None)
    for value in heard:
        if value == next_one:
            next_one = next(wanted, None)
        elif value != silence[0]:
            return False
    return next_one is None


def assert_heard_at_last(device, samples, play, silence=b"\x80"):
    """Plays until the samples are heard exactly. On a loaded machine Wine's thread for sounds may come too late; then
    it fills the gap with silence, and only then there is another hearing."""
    for _ in range(HEARINGS):
        play()
        if not ran_dry(device.sound(), samples, silence) or device.sound()[:len(samples)] == samples:
            break
    assert_heard(device, samples, silence)
