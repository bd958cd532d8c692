#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""sbom.py VERSION TARBALL TIME: an SPDX 2.3 document of a release, one component that needs the C library alone. TIME is
the commit's, in seconds."""
import datetime
import hashlib
import json
import sys
from pathlib import Path

version, tarball, time = sys.argv[1], Path(sys.argv[2]), int(sys.argv[3])
digest = hashlib.sha256(tarball.read_bytes()).hexdigest()
licences = " AND ".join(sorted(path.stem for path in Path(__file__).parents[1].glob("LICENSES/*.txt")))
authors = "Organization: The libzelt authors"
json.dump({
    "spdxVersion": "SPDX-2.3",
    "dataLicense": "CC0-1.0",
    "SPDXID": "SPDXRef-DOCUMENT",
    "name": f"libzelt-{version}",
    "documentNamespace": f"https://spdx.org/spdxdocs/libzelt-{version}-{digest}",
    "creationInfo": {
        "created": datetime.datetime.fromtimestamp(time, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ"),
        "creators": [authors, f"Tool: libzelt-sbom.py-{version}"],
    },
    "packages": [{
        "SPDXID": "SPDXRef-Package-libzelt",
        "name": "libzelt",
        "versionInfo": version,
        "packageFileName": tarball.name,
        "primaryPackagePurpose": "LIBRARY",
        "supplier": authors,
        "originator": authors,
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "checksums": [{"algorithm": "SHA256", "checksumValue": digest}],
        "licenseConcluded": licences,
        "licenseDeclared": licences,
        "licenseComments": "What is built is MIT. Samples, and pictures of the documentation made of them, are CC0-1.0.",
        "copyrightText": "Copyright (c) 2026 The libzelt authors",
        "summary": "Building blocks for codecs, players and cameras. The library needs the C library alone.",
        "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                          "referenceLocator": f"pkg:generic/libzelt@{version}?checksum=sha256:{digest}"}],
    }],
    "relationships": [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
                       "relatedSpdxElement": "SPDXRef-Package-libzelt"}],
}, sys.stdout, indent=2)
print()
