//! orx_policy: what a policy module written in Rust sees of its host. `ravo-orx policy build` and
//! `policy test` compile this crate and then the policy's source against it:
//!
//!   rustc --edition 2021 --target wasm32-unknown-unknown -C opt-level=2 -C panic=abort -C debuginfo=0
//!         (a cdylib, linked by wasm-ld with symbols stripped)
//!
//! A policy is `#![no_std]`, exports `decide` with the decision kind's facts as `i32` parameters in
//! argument order (`#[no_mangle] pub extern "C" fn decide(...) -> i32`) and reports the decision with
//! `emit`: the kind's tag, the result, then the kind's three further values. Only the last call of a
//! decision counts. A panic traps, and the host answers with the kind's fail-safe decision.
#![no_std]

/// authz emits [5201, allowed 0/1, command, reason, policyVersion].
pub const AUTHZ_TAG: i32 = 5201;
/// sync emits [5301, action, rateX1000, correctionMilliseconds, reason].
pub const SYNC_TAG: i32 = 5301;
/// cinema emits [5401, route, sparseAnchorIntervalFrames, safeBudgetTenthsMilliseconds, reason].
pub const CINEMA_TAG: i32 = 5401;

#[link(wasm_import_module = "output")]
extern "C" {
    #[link_name = "emit"]
    fn output_emit(tag: i32, result: i32, first: i32, second: i32, third: i32) -> i32;
}

/// Reports the decision.
#[inline]
pub fn emit(tag: i32, result: i32, first: i32, second: i32, third: i32) {
    // The host's import only records the values and always returns 0.
    unsafe { output_emit(tag, result, first, second, third) };
}

#[panic_handler]
fn panic(_: &core::panic::PanicInfo) -> ! {
    core::arch::wasm32::unreachable()
}
