# The systems that ./dev port builds for: what each needs, how it is built, and what runs its programs here.
import os
import re
import subprocess
from dataclasses import dataclass, field
from pathlib import Path

FOLDER = Path("build/port").resolve()
JSON = Path("cmake/cross").resolve()

ALL = ("kiln-as", "kiln-check", "kiln-lsp")
WITHOUT_SERVER = ALL[:2]


@dataclass
class Target:
    name: str
    system: str  # as the table shows it
    compiler: str
    packages: tuple  # Debian's
    options: tuple  # for CMake
    runner: tuple = ()  # what runs its programs here
    programs: tuple = ALL
    suffix: str = ""  # of the programs
    environment: dict = field(default_factory=dict)
    preparation: tuple = ()  # a command to run before its programs

    def folder(self):
        return FOLDER / self.name

    # The command that runs one of its programs.
    def command(self, program):
        return [*self.runner, str(self.folder() / (program + self.suffix))]

    # Raises when a step fails. What the steps print goes to a file.
    def build(self):
        self.folder().mkdir(parents=True, exist_ok=True)
        configure = ["cmake", "-S", ".", "-B", self.folder(), "-G", "Ninja", f"-Dnlohmann_json_DIR={JSON}",
                     *self.options]
        build = ["cmake", "--build", self.folder(), "--target", *self.programs]
        with open(self.folder() / "build.log", "w") as log:
            for step in filter(None, (configure, build, self.preparation)):
                subprocess.run(step, stdout=log, stderr=log, check=True, env={**os.environ, **self.environment})

    # "g++ 12.2.0"
    def compiler_version(self):
        said = subprocess.run([self.compiler, "--version"], capture_output=True, text=True).stdout
        version = re.search(r" (\d[\d.]*)", said)[1]
        return f"{self.compiler.removesuffix('-posix').split('-')[-1]} {version}"


# With a cross compiler from Debian, and what runs its programs.
def linux(name, system, processor, emulator, programs=ALL):
    compiler = f"{processor}-linux-gnu-g++"
    options = ("-DCMAKE_SYSTEM_NAME=Linux", f"-DCMAKE_SYSTEM_PROCESSOR={processor}", f"-DCMAKE_CXX_COMPILER={compiler}")
    return Target(name, system, compiler, (f"g++-{processor}-linux-gnu".replace("_", "-"), "qemu-user"), options,
                  (emulator,), programs)


WINE = {
    "WINEPREFIX": str(FOLDER / "wine"),
    "WINEDEBUG": "-all",  # or its own remarks would be among the messages
    "WINEDLLOVERRIDES": "mscoree=;mshtml=",  # or it would ask whether to fetch them
}

# The modules of Debian's packages, which another Node than Debian's does not find by itself.
NODE = {"NODE_PATH": "/usr/share/nodejs"}

TARGETS = (
    Target("libcxx", "Linux, x86-64, libc++, unsigned char", "clang++", ("clang", "libc++-14-dev", "libc++abi-14-dev"),
           ("-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_CXX_FLAGS=-stdlib=libc++ -funsigned-char"),
           programs=WITHOUT_SERVER),
    linux("i686", "Linux, i686 (32 bit)", "i686", "qemu-i386", WITHOUT_SERVER),
    linux("arm64", "Linux, arm64", "aarch64", "qemu-aarch64"),
    linux("s390x", "Linux, s390x (big-endian)", "s390x", "qemu-s390x"),
    Target("windows", "Windows, x86-64", "x86_64-w64-mingw32-g++-posix",
           ("g++-mingw-w64-x86-64-posix", "wine", "wine64"),
           ("-DCMAKE_SYSTEM_NAME=Windows", "-DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix"),
           ("wine",), suffix=".exe", environment=WINE, preparation=("wineboot", "--init")),
    Target("wasm", "WebAssembly", "em++", ("emscripten", "nodejs"),
           ("-DCMAKE_TOOLCHAIN_FILE=/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake",),
           ("node",), WITHOUT_SERVER, ".js", NODE),
)
