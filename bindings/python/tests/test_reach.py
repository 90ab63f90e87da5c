# SPDX-License-Identifier: MIT
"""Runs last: the tests before it called every function of the header, counted where the calls
arrive."""
import pytest


def test_every_function_was_called(shim, request):
    chosen = request.config.option
    if chosen.keyword or chosen.markexpr or request.session.testsfailed:
        pytest.skip("only part of the tests ran")
    assert [name for name in shim.functions if shim.calls(name) == 0] == []
    assert len(shim.functions) > 100
