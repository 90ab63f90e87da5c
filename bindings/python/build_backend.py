# SPDX-License-Identifier: MIT
"""setuptools, from where it is installed.

pip builds in an environment of its own and fetches what the build requires. Without a network that
fails, also where setuptools and cffi are installed. So this backend requires nothing that the
interpreter already has: it looks in the interpreter's own folders, which pip hides, and asks pip
only for what is missing there.
"""
import importlib.util
import site
import sys

_NEEDED = {"setuptools": "setuptools>=61", "cffi": "cffi>=1.15", "wheel": "wheel"}

for _folder in site.getsitepackages():
    if _folder not in sys.path:
        sys.path.append(_folder)


def _missing():
    return [need for name, need in _NEEDED.items() if importlib.util.find_spec(name) is None]


def get_requires_for_build_wheel(config_settings=None):
    """What pip has to fetch: nothing on a machine with Debian's packages."""
    return _missing()


def get_requires_for_build_sdist(config_settings=None):
    """As for a wheel."""
    return _missing()


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    """Passed on to setuptools."""
    from setuptools import build_meta

    return build_meta.prepare_metadata_for_build_wheel(metadata_directory, config_settings)


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    """Passed on to setuptools."""
    from setuptools import build_meta

    return build_meta.build_wheel(wheel_directory, config_settings, metadata_directory)


def get_requires_for_build_editable(config_settings=None):
    """As for a wheel."""
    return _missing()


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    """Passed on to setuptools."""
    from setuptools import build_meta

    return build_meta.build_editable(wheel_directory, config_settings, metadata_directory)


def build_sdist(sdist_directory, config_settings=None):
    """Passed on to setuptools."""
    from setuptools import build_meta

    return build_meta.build_sdist(sdist_directory, config_settings)
