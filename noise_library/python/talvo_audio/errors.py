"""What fails, in words."""


class TalvoAudioError(RuntimeError):
    """The audio library, its model or ffmpeg can't do what was asked; the text says why."""
