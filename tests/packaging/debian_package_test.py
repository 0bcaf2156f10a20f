"""debian_package_test.py CPACK BUILD_FOLDER VERSION: packs the build, unpacks it, runs it there."""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

cpack, build, version = sys.argv[1:]
for tool in (cpack, "dpkg-shlibdeps", "lintian", "appstreamcli", "desktop-file-validate"):
    if not shutil.which(tool):
        print(tool, "is not installed")
        sys.exit(77)


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], text=True, timeout=100, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    assert done.returncode == 0, (command, done.returncode, done.stdout)
    return done.stdout


with tempfile.TemporaryDirectory() as scratch:
    home = Path(scratch)
    run(cpack, "-G", "DEB", "--config", f"{build}/CPackConfig.cmake", "-B", home)
    package, = home.glob("*.deb")
    assert package.name == f"quorlin_{version}_amd64.deb" or os.uname().machine != "x86_64"
    needs = run("dpkg-deb", "--field", package, "Depends")
    for name in ("ffmpeg", "libqt6sql6-sqlite", "libqt6widgets6", "libpulse0", "libsoxr0"):
        assert name in needs, (name, needs)
    assert "qt6-translations-l10n" in run("dpkg-deb", "--field", package, "Recommends")
    assert "E: " not in (faults := run("lintian", "--fail-on", "none", "--allow-root", package)), faults

    root = home / "root"
    run("dpkg-deb", "--extract", package, root)
    share = root / "usr/share"
    assert run("desktop-file-validate", share / "applications/quorlin.desktop") == ""
    run("appstreamcli", "validate", "--no-net", share / "metainfo/org.quorlin.quorlin.metainfo.xml")
    for name in ("16x16/apps/quorlin.png", "512x512/apps/quorlin.png", "scalable/apps/quorlin.svg"):
        assert (share / "icons/hicolor" / name).stat().st_size > 0, name
    assert f'version="{version}"' in next((share / "metainfo").iterdir()).read_text()
    assert f"({version})" in run("zcat", share / "doc/quorlin/changelog.gz")
    assert "list\\-sources" in run("zcat", share / "man/man1/quorlin.1.gz")

    (home / "runtime").mkdir(mode=0o700)
    env = {"HOME": scratch, "XDG_RUNTIME_DIR": f"{home}/runtime", "QT_QPA_PLATFORM": "offscreen",
           "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8"}
    program = root / "usr/bin/quorlin"
    assert run(program, "--version", env=env).strip() == f"Quorlin {version}"
    assert "Default: " in run(program, "--list-sources", env=env)
    run(program, "--smoke-test", "--data-dir", home / "data", env=env)
    assert (home / "data/library.sqlite3").exists()
