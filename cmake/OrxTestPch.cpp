// Anchor for the tests' shared precompiled header.
