"""Makes a zip of an installed tree, and an SPDX document that lists its files, the same bytes each
time.

package.py INSTALLED-FOLDER TARGET-FOLDER SECONDS COMMIT
"""

import datetime
import hashlib
import json
import pathlib
import re
import sys
import zipfile

# What stands in the binaries, or lies in the package, and is not ours.
PARTS = [
    ("JsonCpp", "1.9.5", "MIT"),
    ("Boost", "1.74.0", "BSL-1.0"),
    ("spdlog", "1.10.0", "MIT"),
    ("fmt", "9.1.0", "MIT"),
    ("CLI11", "2.3.2", "BSD-3-Clause"),
    ("GCC runtime", "12", "GPL-3.0-or-later WITH GCC-exception-3.1"),
    ("mingw-w64 runtime", "10.0", "ZPL-2.1"),
]

installed, target = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
built = datetime.datetime.fromtimestamp(int(sys.argv[3]), datetime.timezone.utc)
commit = sys.argv[4]
version = re.search(r'VRUTILS_VERSION "(.*)"', (installed / "include/vrUtils/version.h").read_text())[1]
name = f"vrUtils-{version}"
files = sorted(path for path in installed.rglob("*") if path.is_file())


def identifier(text):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", text)


def described(path):
    relative = path.relative_to(installed)
    content = path.read_bytes()
    return {
        "SPDXID": identifier(f"File-{relative}"),
        "fileName": f"./{relative}",
        "checksums": [
            {"algorithm": "SHA1", "checksumValue": hashlib.sha1(content).hexdigest()},
            {"algorithm": "SHA256", "checksumValue": hashlib.sha256(content).hexdigest()},
        ],
        "licenseConcluded": "NOASSERTION",
        "copyrightText": "NOASSERTION",
    }


def package(part, part_version, licence, analysed):
    return {
        "SPDXID": identifier(f"Package-{part}"),
        "name": part,
        "versionInfo": part_version,
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": analysed,
        "licenseConcluded": licence,
        "licenseDeclared": licence,
        "copyrightText": "NOASSERTION",
    }


entries = [described(path) for path in files]
whole = package("vrUtils", version, "NOASSERTION", True)
sums = sorted(entry["checksums"][0]["checksumValue"] for entry in entries)
whole["packageVerificationCode"] = {
    "packageVerificationCodeValue": hashlib.sha1("".join(sums).encode()).hexdigest()
}
document = {
    "spdxVersion": "SPDX-2.3",
    "dataLicense": "CC0-1.0",
    "SPDXID": "SPDXRef-DOCUMENT",
    "name": name,
    "documentNamespace": f"urn:vrutils:{version}:{commit}",
    "creationInfo": {
        "created": built.strftime("%Y-%m-%dT%H:%M:%SZ"),
        "creators": ["Tool: scripts/package"],
    },
    "packages": [whole, *(package(*part, False) for part in PARTS)],
    "files": entries,
    "relationships": [
        {"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
         "relatedSpdxElement": whole["SPDXID"]},
        *({"spdxElementId": whole["SPDXID"], "relationshipType": "CONTAINS",
           "relatedSpdxElement": entry["SPDXID"]} for entry in entries),
        *({"spdxElementId": whole["SPDXID"], "relationshipType": "DEPENDS_ON",
           "relatedSpdxElement": identifier(f"Package-{part}")} for part, _, _ in PARTS),
    ],
}
(target / f"{name}.spdx.json").write_text(json.dumps(document, indent=2) + "\n")

with zipfile.ZipFile(target / f"{name}.zip", "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
    for path in files:
        entry = zipfile.ZipInfo(f"{name}/{path.relative_to(installed)}", built.timetuple()[:6])
        entry.compress_type = zipfile.ZIP_DEFLATED
        entry.external_attr = 0o644 << 16
        archive.writestr(entry, path.read_bytes())
