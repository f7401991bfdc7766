#include "runtime/OrxBuildConstants.h"

// Printed by tools/build_orx.sh; tools/README.md defines each value. Update together with artifacts/.

const std::string& OrxBuildConstants::compilerIdentity() {
  static const std::string value = "ORX 1.0.32 commit 665f097bb6fcc0427395e48d23ef00c3ca83a4bf";
  return value;
}

const std::string& OrxBuildConstants::toolchainBundleSha256() {
  static const std::string value = "ca5dcc698e332f388123f3aa013a525ac3f1d474f085b8d3966ad20907ec75d7";
  return value;
}

const OrxBuildConstants::DigestTable& OrxBuildConstants::expectedDigests() {
  static const DigestTable table{
      {"player_authz", "c3ea776c8111d6bad7552b1afbae282fa7f5596cc0f25fd4645b69a88da2a3d7"},
      {"sync_correction", "7155bd93ae9feb084359a1b18eddedf0bbe40e8e1df7128846732ec19e3ab2a8"},
      {"cinema_admission", "92624572bda3b74fcd167aa838a387142c5eeba83bafdf92e5ad32c53f8453f6"}};
  return table;
}

const OrxBuildConstants::DigestTable& OrxBuildConstants::expectedSourceDigests() {
  static const DigestTable table{
      {"player_authz", "1774cb79670830ca1dee81918fb73f710e425c4a3d21558bc4361c20819d9f62"},
      {"sync_correction", "43a92fa7349bb06ee896c6db7e5089b9d5c28806188d23f8d8b40dec7c91a4ae"},
      {"cinema_admission", "3ad00cb2023f6487f59bd1878a2af7cf470924aaf1c9ecc03ef0e1fe3cf4c780"}};
  return table;
}

const OrxBuildConstants::DigestTable& OrxBuildConstants::expectedManifestDigests() {
  static const DigestTable table{
      {"player_authz", "bc3fd97398c5ccc4afbb4a5f13d359505d220a7acbe1073fbaec4db1c9d5bfac"},
      {"sync_correction", "da7195d16ef50de9b2c491e54768a3b444480f343305d47cf7b491addcd2abf9"},
      {"cinema_admission", "b7ea924861f99265ee2c4ca90f91572edc7b8dacf6764cdb4d202f62c60c26c3"}};
  return table;
}
