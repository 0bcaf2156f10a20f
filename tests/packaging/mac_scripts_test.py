"""mac_scripts_test.py PROJECT_FOLDER: the scripts for a Mac, with stand-ins for the Mac's tools.

In place of machine code, files hold what `otool -l` would print of them."""

import os
import plistlib
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

root = Path(sys.argv[1])
packaging = root / "packaging/macos"

# Every tool notes its arguments; what one needs to do besides is here, as the body of a script.
TOOLS = {
    "uname": "echo Darwin",
    "open": 'for a; do case $a in *,txt) cp $HOME/log "${a%,txt}" ;; esac; done',
    "sw_vers": "echo 15.1",
    "sysctl": "echo Apple M1",
    "brew": 'test "$1" = list || echo $HOME/homebrew',
    "cmake": "",
    "nm": 'cat "$1"',
    "otool": 'case $(head -c 2 "$2") in "#!") exit 1 ;; esac; cat "$2"',
    "xattr": "",
    "codesign": "echo Info.plist entries=9 device.audio-input; exit ${CODESIGN_STATUS:-0}",
    "ditto": 'cp -R "$1" "$2"',
    "ffmpeg": "",
    "sandbox-exec": 'shift 5; test -x "$1"',
    "qmake": "case $2 in *VERSION) echo 6.8.1 ;; *) echo $HOME/qt ;; esac",
    "sleep": "",
    "xcrun": "",
    "hdiutil": 'for dmg; do :; done; test -e $HOME/busy && rm $HOME/busy &&'
    ' echo "hdiutil: create failed - Resource busy" && exit 1; echo >"$dmg"',
    "plutil": 'exec python3 - "$@" <<"END"\n'
    "import plistlib, sys\n"
    "_, action, key, *_, file = sys.argv\n"
    "facts = plistlib.load(open(file, 'rb'))\n"
    "if action == '-extract': print(facts[key])\n"
    "else: facts[key] = sys.argv[4]; plistlib.dump(facts, open(file, 'wb'))\n"
    "END",
}


def commands(*needs, minos="14.0", rpath=None):
    text = f"cmd LC_BUILD_VERSION\n minos {minos}\n"
    for library in needs:
        text += f"cmd LC_LOAD_DYLIB\n name {library} (offset 24)\n"
    return text + (f"cmd LC_RPATH\n path {rpath} (offset 12)\n" if rpath else "")


class Mac:
    def __init__(self, folder):
        self.home = Path(folder).resolve()
        for name, body in TOOLS.items():
            self.tool(name, f'echo "{name} $*" >>$HOME/calls\n{body}')
        self.app = self.home / "build/Quorlin.app"
        self.write("MacOS/Quorlin", commands("@rpath/QtCore", rpath="@executable_path/../Frameworks"))
        self.write("Info.plist", plistlib.dumps({"LSMinimumSystemVersion": "14.4"}).decode())
        plugins = ("platforms/libqcocoa", "styles/libqmacstyle", "sqldrivers/libqsqlite")
        for name in plugins:
            self.write(f"PlugIns/{name}.dylib", commands("/usr/lib/libSystem.B.dylib"))
        self.write("PlugIns/sqldrivers/libqsqlpsql.dylib", commands("/nowhere/libpq.dylib"))
        self.write("Frameworks/QtCore", commands())
        self.homebrew("lib/libkeys.dylib", commands("@loader_path/liblock.dylib", minos="15.0"))
        self.homebrew("lib/liblock.dylib", commands())
        media = commands("@loader_path/../../Frameworks/libkeys.dylib")
        for name, text in (("multimedia/libdarwin.dylib", media), ("qtbase_ru.qm", "")):
            path = self.home / "qt" / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        shutil.copy(self.home / "bin/ffmpeg", self.home / "qt/macdeployqt")

    def tool(self, name, body):
        path = self.home / "bin" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(f"#!/bin/sh\n{body}\n")
        path.chmod(0o755)

    def write(self, name, text):
        path = self.app / "Contents" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(0o755 if "MacOS" in name else 0o644)

    def homebrew(self, name, text):
        path = self.home / "homebrew" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def run(self, *command, cwd=None, **environment):
        """Status, output and the tools' calls."""
        (self.home / "calls").write_text("")
        env = {"HOME": str(self.home), "PATH": f"{self.home}/bin:/usr/bin:/bin", **environment}
        done = subprocess.run(command, env=env, cwd=cwd or self.home, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return done.returncode, done.stdout, (self.home / "calls").read_text()


def check_run(mac):
    project = mac.home / "project"
    (project / "scripts").mkdir(parents=True)
    shutil.copy(root / "run", project)
    shutil.copy(root / "scripts/setup.sh", project / "scripts")
    program = project / "build/release/app/Quorlin.app/Contents/MacOS/Quorlin"
    program.parent.mkdir(parents=True)
    shutil.copy(mac.home / "bin/ffmpeg", program)
    here, app = mac.home, project / "build/release/app/Quorlin.app"
    for given, opened in (
        ((), ""),
        (("--data-dir", "a b"), f" --data-dir {here}/a b"),
        (("--smoke-test", "--data-dir=a"), f" --smoke-test --data-dir={here}/a"),
        (("--data-dir", "/a"), " --data-dir /a"),
    ):
        status, output, calls = mac.run(project / "run", *given)
        assert status == 0 and f"open -W -n {app} --args{opened}\n" in calls, (output, calls)
        assert "qtbase qtmultimedia" not in calls, calls  # all are installed
    for given in ("--list-sources", "--help", "--version"):
        status, output, calls = mac.run(project / "run", given)
        assert status == 0 and f"\nffmpeg {given}\n" in calls and "open" not in calls, calls


def check_mac_check(mac):
    project, app = mac.home / "project", mac.home / "project/build/release/app/Quorlin.app"
    for folder in ("scripts", "packaging"):
        shutil.copytree(root / folder, project / folder)
    probe = project / "build/mac-check/QuorlinCheck.app/Contents"
    for name in ("multimedia/libdarwin", "styles/libx", "platforms/libqcocoa", "sqldrivers/libqsqlite"):
        (mac.home / f"qt/{name}.dylib").parent.mkdir(exist_ok=True)
        (mac.home / f"qt/{name}.dylib").touch()
    for name in ("qt/qtbase_ru.qm", "project/build/mac-check/tests/capture/real_mac_test"):
        (mac.home / name).parent.mkdir(parents=True, exist_ok=True)
        (mac.home / name).touch()
    mac.write("MacOS/Quorlin", "#!/bin/sh\n# QDarwinMicrophonePermissionRequest\necho 'Output: a'\n"
              'for d; do :; done; [ $# = 1 ] || { mkdir "$d"; echo >"$d/library.sqlite3"; }\n')
    shutil.copytree(mac.app, app)
    shutil.copytree(mac.home / "bin", app / "Contents/Resources/tools")
    (project / "build/release/CMakeCache.txt").write_text(f"Qt6_DIR:PATH={mac.home}/lib/cmake/Qt6\n")
    log = (mac.home / "log").write_text
    log("PASS   : RealMacTest::initTestCase()\nQDEBUG : RealMacTest::t() AudioDeviceStart: 7 ms\n"
        f"SKIP   : RealMacTest::t(a) in {mac.home}\nPASS   : RealMacTest::e()\n")
    status, output, calls = mac.run(project / "scripts/mac-check")
    report = (project / "mac-check.txt").read_text()
    eyes = "needs your eyes  "
    assert status == 0 and "FAIL" not in report and report.count(eyes) == 8, (output, calls)
    assert report.count("\nOK ") == 10 and f"\n{eyes}t(a) in ~\n" in report, report
    assert "macOS 15.1, Apple M1" in report and report.count("AudioDeviceStart: 7 ms") == 1, report
    facts = plistlib.loads((probe / "Info.plist").read_bytes())
    assert facts["CFBundleIdentifier"] == "org.quorlin.Check", facts
    assert f"macos/Quorlin.entitlements {probe.parent}\n" in calls, calls
    assert f"open -W -n {probe.parent} --args -o" in calls, calls
    log("FAIL!  : RealMacTest::t(a) 'no blocks'\n")
    status, output, _ = mac.run(project / "scripts/mac-check")
    assert status == 1 and "\nFAIL             t(a) 'no blocks'\n" in output, output
    (mac.home / "qt/qtbase_ru.qm").unlink()
    (app / "Contents/MacOS/Quorlin").write_text("#!/bin/sh\nexit 1\n")
    status, output, _ = mac.run(project / "scripts/mac-check", CODESIGN_STATUS="1")
    assert status == 1, output
    for fault in ("the signature", "it binds", "it allows", "Qt can ask", "Qt speaks Russian: ~",
                  "sources", "the window", "the capture check runs", "the capture check ended"):
        assert f"\nFAIL             {fault}" in output, (fault, output)


def check_finish(mac):
    finish = (packaging / "finish-bundle", "rights", mac.app)
    status, output, calls = mac.run(*finish, "QtCore")
    assert status == 0, output
    assert f"xattr -cr {mac.app}\ncodesign --force --sign - --entitlements rights {mac.app}" in calls
    assert subprocess.run([mac.app / "Contents/Resources/tools/ffmpeg", "-x"], check=False,
                          env={"HOME": str(mac.home)}).returncode == 0
    assert (mac.home / "calls").read_text().endswith("\nffmpeg -x\n")
    status, output, calls = mac.run(*finish, "PermissionRequest")
    assert status == 1 and "lacks PermissionRequest" in output and "codesign" not in calls


def check_package(mac):
    dmg = mac.home / "Quorlin.dmg"
    package = (packaging / "package", mac.app, dmg, mac.home / "bin/qmake")
    (mac.home / "busy").touch()
    status, output, calls = mac.run(*package, CODESIGN_STATUS="0")
    assert status == 0 and dmg.exists(), output
    assert "runs on macOS 15.0 and newer" in output, output
    assert calls.count("hdiutil") == 2 and "notarytool" not in calls, calls
    # Nothing copied runs before it is signed.
    assert calls.index("codesign") < calls.index("sandbox-exec"), calls
    assert "libkeys.dylib" in calls and "liblock.dylib" in calls, calls
    for secret in ("ffmpeg -version", "Quorlin --smoke-test --data-dir"):
        assert any("sandbox-exec" in c and "/opt/homebrew" in c and secret in c
                   for c in calls.splitlines()), calls
    status, output, calls = mac.run(*package, QUORLIN_SIGN_IDENTITY="Developer ID",
                                    QUORLIN_NOTARY_PROFILE="notary")
    assert status == 0 and f"codesign --force --sign Developer ID --timestamp {dmg}" in calls
    assert f"notarytool submit {dmg} --keychain-profile notary --wait" in calls, calls
    assert calls.endswith(f"xcrun stapler staple {dmg}\n"), calls
    (mac.home / "homebrew/lib/liblock.dylib").unlink()
    status, output, calls = mac.run(*package)
    assert status == 1 and "libkeys.dylib needs @loader_path/liblock.dylib" in output, output
    assert "hdiutil" not in calls, calls


def check_libraries(mac):
    """Of a packed copy, each fault by itself."""
    mac.write("Resources/tools/ffmpeg", commands())
    (mac.app / "Contents/Resources/tools/ffmpeg").chmod(0o755)
    mac.write("Resources/qt.conf", "[Paths]\nTranslations = Resources/words\n")
    mac.write("Resources/words/qtbase_ru.qm", "")
    mac.write("PlugIns/multimedia/libdarwin.dylib", commands())
    mac.write("PlugIns/sqldrivers/libqsqlpsql.dylib", commands())
    check = (packaging / "check-libraries", mac.app)
    status, output, _ = mac.run(*check)
    assert status == 0, output
    outside = commands("@loader_path/../../../../outside.dylib")
    (mac.home / "build/outside.dylib").touch()
    for name, text, complaint in (
        ("PlugIns/styles/libx.dylib", commands("/opt/lib/a.dylib"), "needs /opt/lib/a.dylib"),
        ("PlugIns/styles/libx.dylib", commands("@loader_path/a.dylib"), "@loader_path/a.dylib"),
        ("PlugIns/styles/libx.dylib", commands("@rpath/a.dylib"), "needs @rpath/a.dylib"),
        ("PlugIns/styles/libx.dylib", outside, "outside.dylib"),
        ("PlugIns/styles/libx.dylib", commands(minos="14.10"), "needs macOS 14.10"),
        ("PlugIns/platforms/libqcocoa.dylib", None, "lacks PlugIns/platforms/libqcocoa.dylib"),
        ("PlugIns/sqldrivers/libqsqlite.dylib", None, "libqsqlite.dylib"),
        ("PlugIns/styles/libqmacstyle.dylib", None, "lacks PlugIns/styles/"),
        ("PlugIns/multimedia/libdarwin.dylib", None, "lacks PlugIns/multimedia/"),
        ("Resources/words/qtbase_ru.qm", None, "lacks Resources/words/qtbase_ru.qm"),
        ("Resources/qt.conf", "[Paths]\n", "translations that qt.conf names"),
        ("Resources/tools/ffmpeg", None, "ffmpeg does not run by itself"),
    ):
        file = mac.app / "Contents" / name
        before = file.read_text() if file.exists() else None
        if text is None:
            file.unlink()
        else:
            mac.write(name, text)
        status, output, _ = mac.run(*check)
        assert status == 1 and complaint in output, (name, complaint, output)
        file.unlink(missing_ok=True)
        if before is not None:
            mac.write(name, before)
    status, output, _ = mac.run(*check, CODESIGN_STATUS="1")
    assert status == 1 and "is not signed" in output, output


for checked in (check_run, check_mac_check, check_finish, check_package, check_libraries):
    with tempfile.TemporaryDirectory() as home:
        checked(Mac(home))
