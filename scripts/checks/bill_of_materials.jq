def package(id; name; version; license; from): {
  SPDXID: ("SPDXRef-" + id), name: name, versionInfo: version, supplier: "NOASSERTION",
  downloadLocation: from, filesAnalyzed: false,
  licenseConcluded: license, licenseDeclared: license, copyrightText: "NOASSERTION"
};
def relation(from; kind; to): {
  spdxElementId: ("SPDXRef-" + from), relationshipType: kind, relatedSpdxElement: ("SPDXRef-" + to)
};
{
  spdxVersion: "SPDX-2.3",
  dataLicense: "CC0-1.0",
  SPDXID: "SPDXRef-DOCUMENT",
  name: ("vestra-" + $version),
  documentNamespace: ("https://calvix.example/vestra/spdx/" + $version + "-" + $sum),
  creationInfo: { created: $created, creators: ["Organization: Vestra developers", "Tool: scripts/release"] },
  hasExtractedLicensingInfos: [{
    licenseId: "LicenseRef-Vestra", name: "proprietary", extractedText: $licence
  }],
  packages: [
    package("vestra"; "vestra"; $version; "LicenseRef-Vestra"; "NOASSERTION")
      + { supplier: "Organization: Vestra developers", copyrightText: "Copyright 2026 Vestra developers" }
      + { packageFileName: $library, checksums: [{ algorithm: "SHA256", checksumValue: $sum }] },
    package("boost-filesystem"; "Boost.Filesystem"; $boost; "BSL-1.0"; "NOASSERTION"),
    package("boost-headers"; "Boost's headers: Uuid, String Algorithms and what these include"; $boost;
      "BSL-1.0"; "NOASSERTION"),
    ($parts[] | package(.name; .name; .version; .license; "NOASSERTION")),
    package("compiler"; "GCC"; $compiler; "GPL-3.0-or-later WITH GCC-exception-3.1"; "NOASSERTION")
  ],
  relationships: [
    relation("DOCUMENT"; "DESCRIBES"; "vestra"),
    relation("vestra"; "STATIC_LINK"; "boost-filesystem"),
    relation("vestra"; "CONTAINS"; "boost-headers"),
    ($parts[] | relation("vestra"; .relation; .name)),
    relation("compiler"; "BUILD_TOOL_OF"; "vestra")
  ]
}
