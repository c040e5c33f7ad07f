"""Who may include whom.

Each folder below is a room; each row names the rooms that its files may include beside their own. Every include is resolved the way
the compiler would, so that two files of one name in different rooms are told apart. A third table says which foreign headers
belong to which room, so that a library stays behind the one door that was made for it.

    check_includes.py SOURCE_TREE
"""
import pathlib
import re
import sys

C_INTERFACE = "include/kiv"
GENAPI_INTERFACE = "include/GenApi"
GENTL_INTERFACE = "include/GenTL"
REGISTRY_INTERFACE = "include/Kiv_Registry.h"
IMAGING_INTERFACE = "include/VL.h"
PUBLIC = [C_INTERFACE, GENAPI_INTERFACE, GENTL_INTERFACE, REGISTRY_INTERFACE, IMAGING_INTERFACE]
BASE = [C_INTERFACE, GENAPI_INTERFACE, "lib/platform", "lib/gcbase"]

ROOMS = {
    C_INTERFACE: [IMAGING_INTERFACE],
    GENAPI_INTERFACE: [],
    GENTL_INTERFACE: [],
    REGISTRY_INTERFACE: [C_INTERFACE],
    IMAGING_INTERFACE: [C_INTERFACE],
    "lib/platform": [],
    "lib/gcbase": [GENAPI_INTERFACE, "lib/platform"],
    "lib/archive": ["lib/platform", "lib/gcbase"],
    "lib/registry": [REGISTRY_INTERFACE, C_INTERFACE, "lib/platform", "lib/gcbase"],
    "lib/genapi": [GENAPI_INTERFACE, "lib/platform", "lib/gcbase", "lib/archive", "lib/log"],
    "lib/log": ["lib/platform", "lib/gcbase", GENAPI_INTERFACE],
    "lib/clprotocol": [GENAPI_INTERFACE, "lib/genapi", "lib/gcbase", "lib/log", "lib/platform"],
    "lib/vl": [IMAGING_INTERFACE, C_INTERFACE, "lib/platform"],
    "src/imaging": [C_INTERFACE, IMAGING_INTERFACE],
    "src/diagnostics": [*BASE, "lib/log"],
    "src/transport": [*BASE, GENTL_INTERFACE, REGISTRY_INTERFACE, "lib/genapi", "lib/clprotocol", "lib/log"],
    "src/camera": [*BASE, "src/transport", "src/imaging", "lib/genapi", "lib/archive", GENTL_INTERFACE],
    "src/features": [*BASE, "src/camera", "src/transport", "src/imaging", "lib/genapi"],
    "src/acquisition": [*BASE, "lib/log", "src/camera", "src/features", "src/transport", "src/imaging", IMAGING_INTERFACE, GENTL_INTERFACE],
    "src/settings": [*BASE, "src/camera", "src/features"],
    "src/api": [*BASE, GENTL_INTERFACE, REGISTRY_INTERFACE, IMAGING_INTERFACE, "src/transport", "src/camera", "src/features",
                "src/acquisition", "src/settings", "src/diagnostics", "src/imaging"],
    "producer/sim": [GENTL_INTERFACE, "lib/platform"],
    "tools/kiv": PUBLIC,
    "examples": PUBLIC,
    "tests/api": [*PUBLIC, "tests/support", "lib/platform"],
    "tests/tool": [*PUBLIC, "tests/support", "lib/platform"],
    "tests/support": [*PUBLIC, "lib/platform"],
}

# Header -> the rooms that may know it. What is not listed is nobody's secret.
FOREIGN = {
    r"pugixml\.hpp": ["lib/genapi/record", "lib/registry"],
    r"zip\.h": ["lib/archive", "producer/sim/camera"],
    r"xercesc/.*": ["src/settings"],
    r"log4cpp/.*": ["lib/log"],
    r"opencv2?/.*": ["lib/vl", "tools/kiv"],
    r"(png|tiff|tiffio|jpeglib)\.h": ["lib/vl", "producer/sim/camera"],
    r"SDL2?/.*": ["lib/vl"],
    r"(dlfcn|poll|pthread|fcntl|iconv|langinfo|link|termios|sys/[a-z]+)\.h": ["lib/platform/posix"],
    r"(windows|winsock2|dbghelp)\.h": ["lib/platform/win32"],
}
# The public headers say how functions are exported, which no other header can do for them.
MAY_ASK_FOR_THE_SYSTEM = ("lib/platform/", "include/")

SOURCES = {".h", ".hpp", ".c", ".cpp", ".inl"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
SYSTEM_TEST = re.compile(r"^\s*#\s*(?:el)?if.*\b(_WIN32|_WIN64|__linux__|__unix__|__APPLE__)\b")


def room_of(path):
    """The room of a file, by its path from the root of the tree."""
    text = path.as_posix()
    if text == "include/Kiv_Factory.h":
        return C_INTERFACE
    if text.startswith("include/GenICam/"):
        return GENAPI_INTERFACE
    fitting = [room for room in ROOMS if text == room or text.startswith(room + "/")]
    return max(fitting, key=len, default=None)


def include_folders(root, path):
    """Where the compiler looks for what a file includes."""
    folders = [root / path.parent, root / "include", root / "src", root / "tests"]
    folders += [folder for folder in (root / "lib").glob("*/include")]
    parts = path.parts
    for depth in range(1, len(parts)):
        folders.append(root.joinpath(*parts[:depth]))
    return folders


def resolve(root, path, name):
    for folder in include_folders(root, path):
        target = (folder / name).resolve()
        if target.is_file() and target.is_relative_to(root):
            return target.relative_to(root)
    return None


def faults_of(root, path, room):
    text = (root / path).read_text(encoding="utf-8")
    for number, line in enumerate(text.splitlines(), 1):
        if SYSTEM_TEST.match(line) and not path.as_posix().startswith(MAY_ASK_FOR_THE_SYSTEM):
            yield f"{path}:{number}: asks which system it is on; that is lib/platform's business"
        include = INCLUDE.match(line)
        if not include:
            continue
        name = include.group(2)
        target = resolve(root, path, name)
        if target is None:
            for pattern, owners in FOREIGN.items():
                if re.fullmatch(pattern, name) and not path.as_posix().startswith(tuple(owners)):
                    if not path.as_posix().startswith(("tests/", "examples/")):
                        yield f"{path}:{number}: <{name}> belongs to {' and '.join(owners)}"
            continue
        other = room_of(target)
        if other is None:
            yield f"{path}:{number}: includes {target}, which is in no room"
        elif other != room and other not in ROOMS[room]:
            yield f"{path}:{number}: {room} may not include {other} ({name})"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    files = 0
    faults = []
    for top in ("include", "lib", "src", "producer", "tools", "examples", "tests/api", "tests/tool", "tests/support"):
        for file in sorted((root / top).rglob("*")):
            if file.suffix not in SOURCES:
                continue
            path = file.relative_to(root)
            room = room_of(path)
            files += 1
            if room is None:
                faults.append(f"{path}: is in no room")
            else:
                faults.extend(faults_of(root, path, room))
    print("\n".join(faults))
    print(f"{files} files, {len(faults)} faults")
    return 1 if faults or files < 100 else 0


if __name__ == "__main__":
    sys.exit(main())
