#!/usr/bin/env python3
"""tools/check-layering.py [--draw] [TREE]: fails where the tree is not layered as its CMake files say.

Every file under src/ belongs to one target. A file includes only headers of its own target and of those that its target
links itself; a header that no target lists is private to the target of its folder. Targets link only what stands before
them in the order of the rooms, so that there is no circle; main.cpp is a target of its own behind all others. The names
of a C library stay in the room that wraps it, and what has no window does not link the toolkit's widgets.

--draw prints the rooms in their order, each with what it links.
"""
import dataclasses
import pathlib
import re
import sys

# What no file outside these folders may name: (what, names in the code, included headers, where they are at home).
LIBRARIES = [
    ("XCB", r"(xcb|XCB)_\w+", r"xcb/", r"x11/|.*/x11/|desktop/x11_"),
    ("libpulse", r"(pa|PA)_\w+", r"pulse/", r"audio/"),
    ("FFmpeg", r"(av|sws|swr|avcodec|avformat|avio|avutil)_\w+|(AV|SWS_|Sws|Swr)[A-Z_]\w*", r"lib(av|sw)\w+/", r"codec/"),
    ("x264", r"(x264|X264)_\w+", r"x264", r"codec/"),
    ("libjpeg", r"(jpeg|JPEG|JCS|JDCT)_\w+|JSAMP\w+|JDIMENSION", r"jpeglib|jerror|jmorecfg", r"capture/jpeg/"),
    ("a compressor", r"(lzo|LZO|lzo1\w|LZ4|LZ4F|snappy|fastlz)_\w+|snappy::\w+|z_stream|(de|in)flateInit\w*",
     r"lzo/|lz4|snappy|fastlz|zlib", r"compression/"),
    ("xxHash", r"XXH\w+", r"xxhash", r"display/|capture/spool/"),
    ("a thread that nothing guards",
     r"std::jthread|std::async|pthread_create|asio::thread_pool|QThread(?!::current)|QThreadPool|QtConcurrent|std::thread(?= \w+[({]|[({])",
     r"(?!)", r"base/thread\."),
    ("a bus that may be waited for", r"QDBusConnection::(session|system)Bus", r"(?!)", r"bus/dbus_call\.cpp"),
    ("Wayland", r"(wl|WL|wp|WP|zwlr|ZWLR|zwp|ZWP|zxdg|ZXDG)_\w+", r"wayland-", r"wayland/|.*/wayland/"),
    ("PipeWire", r"(pw|PW|spa|SPA)_\w+", r"pipewire|spa/", r"display/portal/"),
]
WITHOUT_WIDGETS = ["vornic_app_session", "vornic_app_cli"]
GENERATED = re.compile(r"(ui_\w+\.h|.*\.moc)$")
KEYWORDS = {"PUBLIC", "PRIVATE", "INTERFACE", "SOURCES", "HEADERS", "LIBS", "LABELS", "TIMEOUT", "FILES"}
# Comments and literals; a name in them is none of the code's.
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.DOTALL)


@dataclasses.dataclass
class Target:
    """What CMake makes a library or a program of."""

    name: str
    folder: pathlib.Path
    place: int
    program: bool = False
    files: list = dataclasses.field(default_factory=list)
    links: list = dataclasses.field(default_factory=list)

    @property
    def room(self):
        """As people call it."""
        return self.name.removeprefix("vornic_").replace("_", "/") if not self.program else self.name


def target_name(link):
    """vornic::capture::jpeg is the alias of vornic_capture_jpeg."""
    return link.replace("::", "_") if link.startswith("vornic::") else link


class CMakeReader:
    """Reads the calls that make targets, in the order in which CMake meets them; conditions are taken as true."""

    def __init__(self, root):
        self.root = root
        self.targets = {}

    def read(self, folder):
        lists = folder / "CMakeLists.txt"
        if lists.exists():
            self.run(re.sub(r"#[^\n]*", "", lists.read_text()), folder, {})

    def run(self, text, folder, variables):
        calls = re.compile(r"\b(\w+)\s*\(((?:[^()\"]|\"[^\"]*\"|\([^()]*\))*)\)", re.DOTALL)
        position = 0
        while match := calls.search(text, position):
            position = match.end()
            words = self.words(match[2], variables)
            if match[1] == "foreach":
                body, position = self.loop_body(text, position)
                for value in words[3:] if words[1:3] == ["IN", "ITEMS"] else []:
                    self.run(body, folder, variables | {words[0]: [value]})
            else:
                self.call(match[1], words, folder, variables)

    @staticmethod
    def loop_body(text, position):
        depth = 1
        for match in re.compile(r"\b(end)?foreach\s*\(").finditer(text, position):
            depth += -1 if match[1] else 1
            if depth == 0:
                return text[position:match.start()], text.index(")", match.end()) + 1
        return text[position:], len(text)

    @staticmethod
    def words(text, variables):
        found = []
        for word in re.findall(r'"[^"]*"|\S+', text):
            whole = re.fullmatch(r"\$\{(\w+)\}", word)
            if whole and whole[1] in variables:
                found += variables[whole[1]]
                continue
            found.append(re.sub(r"\$\{(\w+)\}", lambda m: " ".join(variables.get(m[1], [m[0]])), word.strip('"')))
        return found

    def call(self, name, words, folder, variables):
        if name == "set" and words:
            variables[words[0]] = words[1:]
        elif name == "list" and words[:1] == ["APPEND"]:
            variables[words[1]] = variables.get(words[1], []) + words[2:]
        elif name == "add_subdirectory":
            self.read(folder / words[0])
        elif name == "vornic_module":
            self.add("vornic_" + words[0].replace("/", "_"), words[1:], folder)
        elif name == "vornic_test":
            self.add(pathlib.Path(words[0]).stem, ["SOURCES", *words], folder, program=True)
        elif name in {"add_executable", "add_library"} and "ALIAS" not in words and "INTERFACE" not in words:
            self.add(words[0], ["SOURCES", *words[1:]], folder, program=name == "add_executable")
        elif name in {"target_sources", "target_link_libraries"} and words[0] in self.targets:
            self.extend(self.targets[words[0]], "SOURCES" if name == "target_sources" else "PRIVATE", words[1:], folder,
                        keep=name == "target_sources")

    def add(self, name, words, folder, program=False):
        target = self.targets[name] = Target(name, folder, len(self.targets), program)
        self.extend(target, "SOURCES", words, folder)

    @staticmethod
    def extend(target, kind, words, folder, keep=False):
        for word in words:
            if word in KEYWORDS:
                kind = kind if keep else word
            elif kind in {"SOURCES", "HEADERS", "FILES"}:
                path = pathlib.Path(word) if word.startswith("/") else folder / word
                if path.suffix in {".h", ".cpp"} and "$" not in word:
                    target.files.append(path)
            elif kind in {"PUBLIC", "PRIVATE", "INTERFACE", "LIBS"}:
                target.links.append(target_name(word))


class Check:
    """Collects what is wrong, a line for each."""

    def __init__(self, root):
        self.root = root
        self.source = root / "src"
        self.complaints = []
        reader = CMakeReader(root)
        reader.read(root)
        self.all_targets = reader.targets
        self.targets = {name: t for name, t in reader.targets.items() if t.folder.is_relative_to(self.source)}
        self.owners = {}
        self.listed = set()

    def complain(self, where, what):
        where = where.relative_to(self.root) if isinstance(where, pathlib.Path) else where
        self.complaints.append(f"{where}: {what}")

    def files(self):
        return sorted(path for path in self.source.rglob("*") if path.suffix in {".h", ".cpp"})

    def check_owners(self):
        for target in self.targets.values():
            for path in target.files:
                if not path.exists():
                    self.complain(path, f"is listed by {target.name} and does not exist")
                elif path in self.owners:
                    self.complain(path, f"belongs to both {self.owners[path].name} and {target.name}")
                self.owners[path] = target
        self.listed = set(self.owners)
        for path in self.files():
            if path in self.owners:
                continue
            folder = next((f for f in path.parents if any(t.folder == f for t in self.targets.values())), None)
            near = [t for t in self.targets.values() if t.folder == folder and not t.program]
            if path.suffix == ".cpp" or len(near) != 1:
                self.complain(path, "belongs to no target")
            else:
                self.owners[path] = near[0]

    def check_includes(self):
        for path in self.files():
            owner = self.owners.get(path)
            for number, line in enumerate(path.read_text().splitlines(), 1):
                match = re.match(r'\s*#\s*include\s*"([^"]+)"', line)
                if owner and match and not GENERATED.match(pathlib.PurePath(match[1]).name):
                    self.check_include(f"{path.relative_to(self.root)}:{number}", owner, match[1])

    def check_include(self, where, owner, name):
        header = self.source / name
        other = self.owners.get(header)
        if not header.exists() or not other:
            self.complain(where, f"{name} is no header under src/")
        elif other is not owner and other.name not in owner.links:
            self.complain(where, f"{owner.name} may not include {name}: it does not link {other.name}")
        elif other is not owner and header not in self.listed:
            self.complain(where, f"{owner.name} may not include {name}: it is private to {other.name}")

    def check_links(self):
        for target in self.targets.values():
            for name in target.links:
                other = self.targets.get(name)
                if name.startswith("vornic_") and name not in self.all_targets and name != "vornic_warnings":
                    self.complain(target.name, f"links {name}, which does not exist")
                elif other and other.program:
                    self.complain(target.name, f"links the program {name}")
                elif other and circle(self.targets, name, target.name):
                    self.complain(target.name, f"links {name}, which links {target.name}: a circle")
                elif other and other.place > target.place:
                    self.complain(target.name, f"links {name}, which stands behind it in the order of the rooms")
                elif not other and name in self.all_targets and not in_src(self, name):
                    self.complain(target.name, f"links {name}, which is not under src/")

    def check_program(self):
        last = max((t.place for t in self.targets.values()), default=0)
        for path, owner in self.owners.items():
            if path.name == "main.cpp" and not (owner.program and owner.files == [path] and owner.place == last):
                self.complain(path, f"is not a program of its own behind all rooms: {owner.name}")
            if owner.program and path.name != "main.cpp":
                self.complain(path, f"belongs to the program {owner.name}, which has main.cpp only")

    def check_libraries(self):
        for path in self.files():
            inside = path.relative_to(self.source).as_posix()
            code = path.read_text()
            names = NOT_CODE.sub(lambda m: "\n" * m[0].count("\n"), re.sub(r"(?m)^\s*#\s*include.*$", "", code))
            for what, pattern, headers, home in LIBRARIES:
                if re.match(home, inside):
                    continue
                for number, line in enumerate(names.splitlines(), 1):
                    if match := re.search(rf"\b({pattern})\b", line):
                        self.complain(f"{path.relative_to(self.root)}:{number}", f"{match[0]} is a name of {what}")
                for number, line in enumerate(code.splitlines(), 1):
                    if match := re.match(rf"\s*#\s*include\s*<(({headers})[^>]*)>", line):
                        self.complain(f"{path.relative_to(self.root)}:{number}", f"{match[1]} is a header of {what}")

    def check_widgets(self):
        for name in WITHOUT_WIDGETS:
            if name in self.targets and (way := way_to(self.targets, name, "Qt6::Widgets")):
                self.complain(name, "links the toolkit's widgets: " + " -> ".join(way))

    def run(self):
        for check in (self.check_owners, self.check_includes, self.check_links, self.check_program,
                      self.check_libraries, self.check_widgets):
            check()
        return self.complaints

    def draw(self):
        rooms = sorted(self.targets.values(), key=lambda target: target.place)
        width = max(len(target.room) for target in rooms)
        for target in rooms:
            below = sorted((self.targets[n] for n in set(target.links) & set(self.targets)), key=lambda t: t.place)
            print(f"{target.room:{width}}", *(["->"] + [other.room for other in below] if below else []))


def in_src(check, name):
    """A bundled library of a room, as well as any other that is made under src/."""
    return check.all_targets[name].folder.is_relative_to(check.source)


def way_to(targets, start, goal):
    """The shortest chain of links from one target to what it must not reach, or nothing."""
    ways, seen = [[start]], {start}
    for way in ways:
        for link in targets[way[-1]].links if way[-1] in targets else []:
            if link == goal:
                return [*way, goal]
            if link not in seen:
                seen.add(link)
                ways.append([*way, link])
    return None


def circle(targets, start, goal):
    return start == goal or way_to(targets, start, goal) is not None


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--draw"]
    root = pathlib.Path(arguments[0]).resolve() if arguments else pathlib.Path(__file__).resolve().parent.parent
    check = Check(root)
    if "--draw" in sys.argv:
        check.draw()
        return 0
    complaints = check.run()
    print(*complaints, sep="\n", end="\n" if complaints else "", file=sys.stderr)
    return bool(complaints)


if __name__ == "__main__":
    sys.exit(main())
