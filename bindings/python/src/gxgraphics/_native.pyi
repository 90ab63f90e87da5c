# SPDX-License-Identifier: MIT
# The compiled module: cffi's two objects. `lib` has every function and constant of GX.h under its own name.
from typing import Any

ffi: Any
lib: Any
