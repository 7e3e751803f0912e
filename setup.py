"""Builds the binding and both libraries by CMake and puts them into the package; pyproject.toml has the
rest."""
import os
import pathlib
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent


def run(*command):
    subprocess.run([str(part) for part in command], check=True)


class CMakeBuild(build_ext):
    """The one extension, with the libraries that it needs beside it."""

    def build_extension(self, ext):
        package = pathlib.Path(self.get_ext_fullpath(ext.name)).resolve().parent
        # A build of the project that is there already serves as well.
        ready = os.environ.get("KORVEX_BUILD_DIRECTORY")
        build = pathlib.Path(ready or self.build_temp).resolve()
        if not ready:
            self.configure(build)
        run("cmake", "--build", build, "--target", "korvex_python", "--parallel", os.cpu_count() or 1)
        run("cmake", "--install", build, "--component", "python", "--strip", "--prefix", package)
        # The loader asks for libkorvex.so.0; a wheel holds no links, so the file takes that name.
        for link in [path for path in package.iterdir() if path.is_symlink()]:
            link.resolve().replace(link)

    def configure(self, build):
        options = [
            "-DCMAKE_BUILD_TYPE=Release",
            "-DKORVEX_BUILD_CLI=OFF",
            "-DKORVEX_BUILD_TESTS=OFF",
            "-DKORVEX_BUILD_PYTHON=ON",
            f"-DPython_EXECUTABLE={sys.executable}",
        ]
        try:
            import pybind11
        except ImportError:
            pass  # CMake finds Debian's
        else:
            options.append(f"-Dpybind11_DIR={pybind11.get_cmake_dir()}")
        generator = [] if os.environ.get("CMAKE_GENERATOR") else ["-G", "Ninja"]
        run("cmake", "-S", ROOT, "-B", build, *generator, *options)


setup(ext_modules=[Extension("korvex._korvex", sources=[])], cmdclass={"build_ext": CMakeBuild})
