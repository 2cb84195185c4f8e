#!/usr/bin/env python3
"""The layering check finds each kind of violation in a small tree, and nothing in the tree that is right."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check-layering.py"
RIGHT = {
    "CMakeLists.txt": "foreach(room IN ITEMS base codec x11 app/cli app)\n  add_subdirectory(src/${room})\nendforeach()\n",
    "src/base/CMakeLists.txt": "vornic_module(base SOURCES log.cpp HEADERS log.h PUBLIC Qt6::Core)\n",
    "src/base/log.h": "",
    "src/base/log.cpp": '#include "base/log.h"\n#include "base/secret.h"\n',
    "src/base/secret.h": "",
    "src/codec/CMakeLists.txt": "vornic_module(codec SOURCES movie.cpp HEADERS movie.h PRIVATE vornic::base)\n",
    "src/codec/movie.h": "",
    "src/codec/movie.cpp": '#include "base/log.h"\n#include <libavcodec/avcodec.h>\nAVFrame *frame;\n',
    "src/x11/CMakeLists.txt": "vornic_module(x11 SOURCES link.cpp)\ntarget_link_libraries(vornic_x11 PRIVATE vornic::base)\n",
    "src/x11/link.cpp": "xcb_window_t window; // av_free\n",
    "src/app/cli/CMakeLists.txt": "vornic_module(app/cli SOURCES command.cpp PRIVATE vornic::codec)\n",
    "src/app/cli/command.cpp": '/* pa_context */ auto text = "xcb_flush";\n#include "codec/movie.h"\n',
    "src/app/CMakeLists.txt": "add_executable(vornic main.cpp)\ntarget_link_libraries(vornic PRIVATE vornic::app::cli)\n",
    "src/app/main.cpp": "",
}


class Layering(unittest.TestCase):
    def check(self, *options, **changes):
        """What the check says to the right tree with these files changed, and whether it fails."""
        with tempfile.TemporaryDirectory() as folder:
            for name, text in (RIGHT | changes.pop("files", {})).items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            run = subprocess.run([sys.executable, "-B", CHECK, *options, folder], capture_output=True, text=True, check=False)
        return run

    def assert_complains(self, files, *complaints):
        run = self.check(files=files)
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertEqual(sorted(run.stderr.splitlines()), sorted(complaints))

    def test_the_right_tree_passes(self):
        run = self.check()
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_draws_rooms_in_order_with_what_they_link(self):
        lines = self.check("--draw").stdout.splitlines()
        self.assertEqual([line.split() for line in lines],
                         [["base"], ["codec", "->", "base"], ["x11", "->", "base"], ["app/cli", "->", "codec"],
                          ["vornic", "->", "app/cli"]])

    def test_a_header_of_a_target_that_is_not_linked(self):
        self.assert_complains({"src/app/cli/command.cpp": '#include "base/log.h"\n'},
                              "src/app/cli/command.cpp:1: vornic_app_cli may not include base/log.h: "
                              "it does not link vornic_base")

    def test_a_private_header_of_a_linked_target(self):
        self.assert_complains({"src/codec/movie.cpp": '\n#include "base/secret.h"\n'},
                              "src/codec/movie.cpp:2: vornic_codec may not include base/secret.h: it is private to vornic_base")

    def test_an_include_that_leads_nowhere(self):
        self.assert_complains({"src/codec/movie.cpp": '#include "log.h"\n'},
                              "src/codec/movie.cpp:1: log.h is no header under src/")

    def test_a_source_of_no_target(self):
        self.assert_complains({"src/codec/forgotten.cpp": ""}, "src/codec/forgotten.cpp: belongs to no target")

    def test_a_source_of_two_targets(self):
        self.assert_complains(
            {"src/codec/CMakeLists.txt": RIGHT["src/codec/CMakeLists.txt"] + "add_library(vornic_more STATIC movie.cpp)\n"
             "target_link_libraries(vornic_more PRIVATE vornic::base vornic::codec)\n"},
            "src/codec/movie.cpp: belongs to both vornic_codec and vornic_more")

    def test_a_circle(self):
        self.assert_complains(
            {"src/base/CMakeLists.txt": "vornic_module(base SOURCES log.cpp HEADERS log.h PRIVATE vornic::codec)\n"},
            "vornic_base: links vornic_codec, which links vornic_base: a circle",
            "vornic_codec: links vornic_base, which links vornic_codec: a circle")

    def test_an_arrow_back_up(self):
        self.assert_complains(
            {"src/codec/CMakeLists.txt": "vornic_module(codec SOURCES movie.cpp HEADERS movie.h PRIVATE vornic::base vornic::x11)\n"},
            "vornic_codec: links vornic_x11, which stands behind it in the order of the rooms")

    def test_a_link_to_nothing(self):
        self.assert_complains(
            {"src/x11/CMakeLists.txt": "vornic_module(x11 SOURCES link.cpp PRIVATE vornic::bsae)\n"},
            "vornic_x11: links vornic_bsae, which does not exist")

    def test_main_within_a_room(self):
        self.assert_complains(
            {"src/app/CMakeLists.txt": "vornic_module(app SOURCES main.cpp)\n"},
            "src/app/main.cpp: is not a program of its own behind all rooms: vornic_app")

    def test_another_source_in_the_program(self):
        self.assert_complains(
            {"src/app/CMakeLists.txt": "add_executable(vornic main.cpp more.cpp)\n", "src/app/more.cpp": ""},
            "src/app/main.cpp: is not a program of its own behind all rooms: vornic",
            "src/app/more.cpp: belongs to the program vornic, which has main.cpp only")

    def test_names_and_headers_of_c_libraries_away_from_home(self):
        for name, library in {"xcb_flush": "XCB", "XCB_NONE": "XCB", "pa_context": "libpulse", "av_free": "FFmpeg",
                              "AVPacket": "FFmpeg", "sws_scale": "FFmpeg", "swr_free": "FFmpeg", "x264_t": "x264",
                              "jpeg_abort": "libjpeg", "LZ4_decoder": "a compressor", "lzo1x_999": "a compressor",
                              "snappy_free": "a compressor", "fastlz_copy": "a compressor", "XXH3_64bits": "xxHash",
                              "wl_display": "Wayland", "WL_OUTPUT_MODE_CURRENT": "Wayland", "zwlr_layer_shell_v1": "Wayland",
                              "wp_viewport": "Wayland", "zxdg_output_v1": "Wayland", "pw_init": "PipeWire"}.items():
            with self.subTest(name):
                self.assert_complains({"src/base/log.cpp": f"// xcb_flush\nauto x = {name}();\n"},
                                      f"src/base/log.cpp:2: {name} is a name of {library}")
        self.assert_complains({"src/base/log.cpp": "#include <xcb/xcb.h>\n"},
                              "src/base/log.cpp:1: xcb/xcb.h is a header of XCB")
        self.assert_complains({"src/base/log.cpp": "#include <wayland-client.h>\n"},
                              "src/base/log.cpp:1: wayland-client.h is a header of Wayland")

    def test_a_thread_or_a_bus_beside_the_wrappers(self):
        for code, name in (("std::thread worker([] {});", "std::thread"), ("x = std::thread([] {});", "std::thread"),
                           ("std::jthread worker;", "std::jthread"), ("class T : QThread {};", "QThread")):
            with self.subTest(code):
                self.assert_complains({"src/base/log.cpp": code + "\n"},
                                      f"src/base/log.cpp:1: {name} is a name of a thread that nothing guards")
        self.assert_complains({"src/base/log.cpp": "auto bus = QDBusConnection::sessionBus();\n"}, "src/base/log.cpp:1: "
                              "QDBusConnection::sessionBus is a name of a bus that may be waited for")
        self.assertEqual(self.check(files={"src/base/log.cpp": "std::thread m_thread;\nstd::thread::id id;\n"
                                           "auto now = QThread::currentThread();\n"}).stderr, "")

    def test_widgets_behind_the_command_line(self):
        self.assert_complains(
            {"src/codec/CMakeLists.txt": RIGHT["src/codec/CMakeLists.txt"].replace("vornic::base", "vornic::base Qt6::Widgets")},
            "vornic_app_cli: links the toolkit's widgets: vornic_app_cli -> vornic_codec -> Qt6::Widgets")


if __name__ == "__main__":
    unittest.main()
