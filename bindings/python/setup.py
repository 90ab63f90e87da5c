# SPDX-License-Identifier: MIT
from setuptools import setup

setup(
    packages=["gxgraphics"],
    package_dir={"": "src"},
    package_data={"gxgraphics": ["py.typed", "*.pyi"]},
    cffi_modules=["build_native.py:make_ffi"],
    zip_safe=False,
)
