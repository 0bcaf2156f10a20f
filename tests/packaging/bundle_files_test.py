"""bundle_files_test.py BUILD_FOLDER PACKAGING_FOLDER ICON_SVG"""

import plistlib
import re
import subprocess
import sys
from pathlib import Path

build, packaging, drawing = (Path(argument) for argument in sys.argv[1:])

# The permissions to record hang on the identifier; macOS shows what is asked for in these words.
facts = plistlib.loads((build / "Info.plist").read_bytes())
assert facts["CFBundleIdentifier"] == "org.quorlin.Quorlin", facts
for subject in ("AudioCapture", "Microphone", "DocumentsFolder", "DesktopFolder", "DownloadsFolder",
                "RemovableVolumes", "NetworkVolumes"):
    assert re.search("[а-я]{5}", facts[f"NS{subject}UsageDescription"]), subject
assert facts["LSAppNapIsDisabled"] is True and facts["CFBundleLocalizations"] == ["ru"], facts
if sys.platform == "darwin":
    subprocess.run(["plutil", "-lint", build / "Info.plist", packaging / "Quorlin.entitlements"],
                   check=True)

subprocess.run([packaging / "render-icon", drawing, build / "Quorlin.icns"], check=True)
icns = (build / "Quorlin.icns").read_bytes()
assert icns.startswith(b"icns" + len(icns).to_bytes(4, "big"))
for size in (b"ic08", b"ic09", b"ic10"):  # 256, 512 and 1024 pixels
    assert size in icns, size
