#!/usr/bin/env python3
"""Shows scripts/check-floors one small tree after the other."""

import contextlib
import io
import json
import tempfile
import types
import unittest
from pathlib import Path


def load_program():
    path = Path(__file__).resolve().parents[2] / "scripts" / "check-floors"
    module = types.ModuleType("check_floors")
    exec(compile(path.read_text(encoding="utf-8"), str(path), "exec"), module.__dict__)
    return module


program = load_program()


class CheckFloorsTest(unittest.TestCase):
    def run_on(self, files, targets=None, second_build=()):
        """The exit code and the lines for a tree of these files, of which `targets` (all sources, if none) are compiled, and
        `second_build` by another build."""
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, text in files.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text, encoding="utf-8")
            compiled = [name for name in files if name.endswith(".cpp")] if targets is None else targets
            builds = []
            for number, names in enumerate([compiled, second_build]):
                builds.append(root / f"compile_commands_{number}.json")
                builds[-1].write_text(json.dumps([{"directory": folder, "file": name, "command": ""} for name in names]))
            output = io.StringIO()
            with contextlib.redirect_stdout(output):
                code = program.main([folder, *map(str, builds)])
            return code, output.getvalue().splitlines()

    def assert_clean(self, files, targets=None):
        self.assertEqual(self.run_on(files, targets), (0, []))

    def assert_violation(self, name, text, *parts):
        code, lines = self.run_on({name: text})
        self.assertEqual(code, 1)
        self.assertEqual(len(lines), 1, lines)
        for part in (name, *parts):
            self.assertIn(part, lines[0])

    def test_a_tree_that_includes_downwards_is_clean(self):
        self.assert_clean({
            "platform/runtime.h": "#include <chrono>\n",
            "platform/native/native_runtime.cpp": "#include <thread>\n#include \"platform/runtime.h\"\n",
            "analytics/normal.cpp": "#include \"analytics/normal.h\"\n",
            "records/base_data.cpp": "#include \"platform/runtime.h\"\n",
            "reference/symbol.cpp": "#include \"records/base_data.h\"\n",
            "strategy/scan.cpp": "#include \"reference/symbol.h\"\n#include \"analytics/normal.h\"\n",
            "engine/engine.cpp": "#include \"strategy/scan.h\"\n#include \"grouporder/order.h\"\n",
            "terminal/bus.cpp": "#include \"records/scaled_value.h\"\n#include \"platform/record_bus.h\"\n",
            "app/main.cpp": "#include \"engine/engine.h\"\n#include \"platform/virtual/virtual_runtime.h\"\n",
            "app/import/taifex.cpp": "#include \"app/import/taifex.h\"\n",
            "tests/engine/engine_test.cpp": "#include <thread>\n#include \"app/import/taifex.h\"\n",
            "bench/replay.cpp": "auto now = std::chrono::steady_clock::now();\n",
        })

    def test_an_include_may_not_run_up_a_floor(self):
        self.assert_violation("records/a.cpp", "\n#include \"engine/engine.h\"\n", ":2:", "engine/engine.h")
        self.assert_violation("platform/a.h", "#include \"records/base_data.h\"\n", ":1:", "records/base_data.h")

    def test_an_include_may_not_run_sideways(self):
        self.assert_violation("strategy/a.h", "#include \"grouporder/order.h\"\n", "grouporder/order.h")
        self.assert_violation("analytics/a.h", "#include \"records/base_data.h\"\n", "records/base_data.h")

    def test_the_terminal_sees_neither_the_engine_nor_what_is_above_the_records(self):
        for header in ("engine/engine.h", "reference/symbol.h", "strategy/scan.h", "analytics/normal.h"):
            self.assert_violation("terminal/a.cpp", f"#include \"{header}\"\n", header)

    def test_the_product_may_not_include_tests(self):
        self.assert_violation("app/a.cpp", "#include \"tests/fakes.h\"\n", "tests/fakes.h")

    def test_an_include_is_written_from_the_root(self):
        self.assert_violation("engine/a.cpp", "#include \"engine.h\"\n", "from the root")
        self.assert_violation("engine/a.cpp", "#include \"../records/a.h\"\n", "from the root")

    def test_only_those_who_make_a_runtime_know_which_one_it_is(self):
        self.assert_violation("engine/a.cpp", "#include \"platform/native/native_runtime.h\"\n", "runtime")

    def test_nothing_outside_the_platform_uses_threads_clocks_or_the_operating_system(self):
        for text, kind in {
            "#include <thread>": "threads",
            "#include <mutex>": "threads",
            "#  include <condition_variable>": "threads",
            "std::mutex m;": "threads",
            "thread_local int n;": "threads",
            "auto t = std::chrono::system_clock::now();": "clocks",
            "auto t = steady_clock::now();": "clocks",
            "auto t = std::time(nullptr);": "clocks",
            "auto t = localtime(&x);": "clocks",
            "std::this_thread::sleep_for(x);": "sleeps",
            "usleep(5);": "sleeps",
            "auto p = std::getenv(\"HOME\");": "environment",
            "std::random_device device;": "random devices",
            "int n = rand();": "random devices",
            "#include <unistd.h>": "operating system",
            "#include <sys/stat.h>": "operating system",
            "#include <windows.h>": "operating system",
        }.items():
            with self.subTest(text):
                self.assert_violation("engine/a.cpp", "\n" + text + "\n", ":2:", kind)
                self.assert_violation("app/a.h", text + "\n", ":1:", kind)

    def test_tests_may_use_clocks_but_no_environment(self):
        self.assert_clean({"tests/a.cpp": "auto t = std::chrono::steady_clock::now();\n"})
        self.assert_violation("tests/a.cpp", "auto p = getenv(\"HOME\");\n", "environment")

    def test_comments_and_texts_are_not_code(self):
        self.assert_clean({"engine/a.cpp": "// std::mutex m; #include \"app/a.h\"\n"
                                           "/* getenv\n#include \"app/a.h\"\n*/\n"
                                           "const char* text = \"getenv \\\" rand()\";\n"
                                           "const char* raw = R\"(\"std::mutex\")\";\n"
                                           "const char quote = '\"';\n"})
        self.assert_violation("engine/a.cpp", "const char* url = \"http://a\"; auto p = getenv(url);\n", "environment")

    def test_names_that_only_look_alike_are_free(self):
        self.assert_clean({"engine/a.cpp": "m_runtime.Sleep(Milliseconds(50)); auto t = m_runtime.LocalTime();\n"
                                           "int time = 0; int brand(int); int x = brand(5); runtime_clock.now();\n"})

    def test_a_source_that_is_in_no_target_is_named(self):
        code, lines = self.run_on({"engine/a.cpp": "", "engine/b.cpp": "", "engine/c.h": ""}, targets=["engine/a.cpp"])
        self.assertEqual(code, 1)
        self.assertEqual(lines, ["engine/b.cpp:1: is in no target"])

    def test_a_source_may_be_in_a_target_of_any_build(self):
        self.assertEqual(self.run_on({"engine/a.cpp": "", "fuzz/b.cpp": ""}, targets=["engine/a.cpp"], second_build=["fuzz/b.cpp"]), (0, []))

    def test_wrong_usage_is_told(self):
        with contextlib.redirect_stderr(io.StringIO()) as told:
            self.assertEqual(program.main([]), 2)
        self.assertIn("check-floors ROOT COMPILE_COMMANDS", told.getvalue())


if __name__ == "__main__":
    unittest.main()
