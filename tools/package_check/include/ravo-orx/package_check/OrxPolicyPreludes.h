#pragma once
// What a compiled policy includes: the C header orx_policy.h and the Rust crate orx_policy, both in
// tools/package_check/prelude/. Their text is compiled into the toolchain, so an installed `ravo-orx`
// compiles policies with no file beside it, and the toolchain digest covers them like its code.

#include <string_view>

namespace ravo::orx {

extern const std::string_view kOrxCPrelude;     // orx_policy.h
extern const std::string_view kOrxRustPrelude;  // orx_policy.rs

}  // namespace ravo::orx
