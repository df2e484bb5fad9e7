#!/usr/bin/env bash
# The bill of materials of a build: sbom.sh TOOL BUILD OUT. Its digests are the files', the libraries are
# linked with the standard ones alone, and what the tools take from a header alone is there.
set -euo pipefail
"$1" "$2" 0 "$3"
python3 - "$2" "$3" <<'PYTHON'
import hashlib, json, pathlib, sys

bill = json.loads(pathlib.Path(sys.argv[2]).read_text())
for file in bill["files"]:
    content = (pathlib.Path(sys.argv[1]) / file["fileName"]).read_bytes()
    assert file["checksums"][1]["checksumValue"] == hashlib.sha256(content).hexdigest(), file
links = {}
for relation in bill["relationships"]:
    links.setdefault(relation["spdxElementId"], set()).add(relation["relatedSpdxElement"])
standard = {f"SPDXRef-deb-{name}" for name in ("libc6", "libgcc-s1", "libstdc--6", "linux-libc-dev")}
for library in ("libQAL-kinematics.so", "libqal.so", "libik.so"):
    assert links[f"SPDXRef-lib-{library}"] <= standard, links[f"SPDXRef-lib-{library}"]
assert {"SPDXRef-deb-nlohmann-json3-dev", "SPDXRef-deb-libcli11-dev"} <= links["SPDXRef-bin-qal"], links
if (pathlib.Path(sys.argv[1]) / "report/page.html").exists():
    assert {"SPDXRef-npm-three", "SPDXRef-npm-uplot"} <= links["SPDXRef-bin-qal"], links
PYTHON
