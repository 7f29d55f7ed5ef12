"""Makes a zip of an installed tree, and an SPDX document that lists its files, inside it and beside
it, the same bytes each time.

package.py INSTALLED-FOLDER TARGET-FOLDER SECONDS COMMIT
"""

import datetime
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import zipfile

# What stands in the binaries, or lies in the package, and is not ours: the Debian package it comes
# from, and its licence.
PARTS = [
    ("Boost", "libboost1.74-dev", "BSL-1.0"),
    ("spdlog", "libspdlog-dev", "MIT"),
    ("fmt", "libfmt-dev", "MIT"),
    ("CLI11", "libcli11-dev", "BSD-3-Clause"),
    ("GCC runtime", "gcc-mingw-w64-base", "GPL-3.0-or-later WITH GCC-exception-3.1"),
    ("mingw-w64 runtime", "mingw-w64-x86-64-dev", "ZPL-2.1"),
]

installed, target = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
built = datetime.datetime.fromtimestamp(int(sys.argv[3]), datetime.timezone.utc)
commit = sys.argv[4]


def defined(header, name):
    return re.search(rf'define {name} "(.*)"', (installed / "include" / header).read_text())[1]


def debian_version(package):
    return subprocess.run(
        ["dpkg-query", "-W", "-f=${Version}", package], check=True, capture_output=True, text=True
    ).stdout


version = defined("vrUtils/version.h", "VRUTILS_VERSION")
name = f"vrUtils-{version}"
files = sorted(path for path in installed.rglob("*") if path.is_file())


def identifier(text):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", text)


def described(number, path):
    content = path.read_bytes()
    return {
        "SPDXID": identifier(f"File-{number}"),
        "fileName": f"./{path.relative_to(installed)}",
        "checksums": [
            {"algorithm": "SHA1", "checksumValue": hashlib.sha1(content).hexdigest()},
            {"algorithm": "SHA256", "checksumValue": hashlib.sha256(content).hexdigest()},
        ],
        "licenseConcluded": "NOASSERTION",
        "copyrightText": "NOASSERTION",
    }


def package(part, part_version, licence, analysed=False):
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


def relation(element, relationship, related):
    return {
        "spdxElementId": element["SPDXID"],
        "relationshipType": relationship,
        "relatedSpdxElement": related["SPDXID"],
    }


def verification_code(entries):
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in entries)
    return {
        "packageVerificationCodeValue": hashlib.sha1("".join(sums).encode()).hexdigest(),
        "packageVerificationCodeExcludedFiles": [f"./{name}.spdx.json"],
    }


def document():
    entries = [described(number, path) for number, path in enumerate(files)]
    whole = package("vrUtils", version, "NOASSERTION", analysed=True)
    whole["packageVerificationCode"] = verification_code(entries)
    parts = [package("JsonCpp", defined("json/version.h", "JSONCPP_VERSION_STRING"), "MIT")]
    parts += [package(part, debian_version(origin), licence) for part, origin, licence in PARTS]
    made = {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": name,
        "documentNamespace": f"urn:vrutils:{version}:{commit}",
        "creationInfo": {
            "created": built.strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": ["Tool: scripts/package"],
        },
        "packages": [whole, *parts],
        "files": entries,
    }
    made["relationships"] = [
        relation(made, "DESCRIBES", whole),
        *(relation(whole, "CONTAINS", entry) for entry in entries),
        *(relation(whole, "DEPENDS_ON", part) for part in parts),
    ]
    return json.dumps(made, indent=2) + "\n"


def add(archive, path, content):
    entry = zipfile.ZipInfo(f"{name}/{path}", built.timetuple()[:6])
    entry.compress_type = zipfile.ZIP_DEFLATED
    entry.external_attr = 0o644 << 16
    archive.writestr(entry, content)


list_of_parts = document()
(target / f"{name}.spdx.json").write_text(list_of_parts)
with zipfile.ZipFile(target / f"{name}.zip", "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
    for path in files:
        add(archive, path.relative_to(installed), path.read_bytes())
    add(archive, f"{name}.spdx.json", list_of_parts)
