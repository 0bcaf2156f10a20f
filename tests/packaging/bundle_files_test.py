"""bundle_files_test.py BUILD_FOLDER PACKAGING_FOLDER ICON_SVG"""

import plistlib
import re
import struct
import subprocess
import sys
import unittest
from pathlib import Path

build, packaging, drawing = (Path(argument) for argument in sys.argv[1:])
# Of the elements that hold a picture: its size by type.
SIZES = {b"is32": 16, b"ic04": 16, b"il32": 32, b"ic05": 32, b"it32": 128, b"ic07": 128,
         b"ic08": 256, b"ic09": 512, b"ic10": 1024}


class BundleFilesTest(unittest.TestCase):
    def test_the_property_list_holds_what_the_system_asks_for(self):
        facts = plistlib.loads((build / "Info.plist").read_bytes())
        expected = {"CFBundleIdentifier": "org.quorlin.Quorlin", "CFBundleVersion": "0.1.5",
                    "CFBundleShortVersionString": "0.1.5", "CFBundleDevelopmentRegion": "ru",
                    "CFBundleExecutable": "Quorlin", "LSMinimumSystemVersion": "14.4",
                    "NSHighResolutionCapable": True}
        self.assertEqual(expected, {key: facts.get(key) for key in expected})
        for key in ("NSAudioCaptureUsageDescription", "NSMicrophoneUsageDescription"):
            self.assertTrue(re.search("[а-я]{5}", facts[key]))
        self.assertNotIn("NSRequiresAquaSystemAppearance", facts)

    def test_the_application_is_entitled_to_the_microphone_alone(self):
        entitlements = plistlib.loads((packaging / "Quorlin.entitlements").read_bytes())
        self.assertEqual({"com.apple.security.device.audio-input": True}, entitlements)

    def test_the_icon_set_holds_its_sizes(self):
        path = build / "Quorlin.icns"
        subprocess.run([packaging / "render-icon", drawing, path], check=True)
        icns, position, sizes = path.read_bytes(), 8, set()
        self.assertEqual((b"icns", len(icns)), struct.unpack(">4sI", icns[:8]))
        while position < len(icns):
            kind, length = struct.unpack(">4sI", icns[position:position + 8])
            sizes.add(SIZES.get(kind))
            position += length
        self.assertLessEqual({16, 32, 128, 256, 512, 1024}, sizes)


unittest.main(argv=sys.argv[:1])
