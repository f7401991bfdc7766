#pragma once
// Test support: "puppet" policy modules whose answer is dictated by their arguments, so that a test can
// make a module emit any record. decide(a0 … aN) with mode a0:
//   0 emits [a2, a3, a4, a5, a6] and returns a7
//   1 returns a7 without emitting
//   2 traps (unreachable)
//   3 emits [0, 0, 0, 0, 0] first, then the record of mode 0 (only the last emit counts)
//   4 emits only [a2, a3, a4, a5] and returns a7
//   5 emits [a2, a3, a4, a5, a6, a7] (one value too many) and returns a7

#include <memory>
#include <string>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

inline std::unique_ptr<internal::LoadedModule> puppetModule(int arity) {
  std::string params;
  for (int i = 0; i < arity; ++i) params += " i32";
  const std::string wat = R"wat((module
  (import "output" "emit" (func $emit5 (param i32 i32 i32 i32 i32) (result i32)))
  (import "output" "emit" (func $emit4 (param i32 i32 i32 i32) (result i32)))
  (import "output" "emit" (func $emit6 (param i32 i32 i32 i32 i32 i32) (result i32)))
  (func (export "decide") (param)wat" + params + R"wat() (result i32)
    (if (i32.eq (local.get 0) (i32.const 2)) (then unreachable))
    (if (i32.eq (local.get 0) (i32.const 3))
      (then (drop (call $emit5 (i32.const 0) (i32.const 0) (i32.const 0) (i32.const 0) (i32.const 0)))))
    (if (i32.eq (local.get 0) (i32.const 4))
      (then (drop (call $emit4 (local.get 2) (local.get 3) (local.get 4) (local.get 5)))))
    (if (i32.eq (local.get 0) (i32.const 5))
      (then (drop (call $emit6 (local.get 2) (local.get 3) (local.get 4) (local.get 5) (local.get 6) (local.get 7)))))
    (if (i32.or (i32.eqz (local.get 0)) (i32.eq (local.get 0) (i32.const 3)))
      (then (drop (call $emit5 (local.get 2) (local.get 3) (local.get 4) (local.get 5) (local.get 6)))))
    (local.get 7))))wat";
  return internal::loadModule("puppet", assembleWat(wat));
}

inline internal::OrxPolicyModules puppetModules() { return {puppetModule(8), puppetModule(8), puppetModule(13)}; }

// Facts that script one answer of each kind from the puppets: a valid answer, a trap, and an answer that
// fails validation (an unechoed command, a rate outside the band, MetalFX claiming to be live-safe).
constexpr AuthorizationFacts kAllowedAuthorization{0, 6, 5201, 1, 6, 0, 3, 1};
constexpr AuthorizationFacts kTrappingAuthorization{2, 6, 5201, 1, 6, 0, 3, 1};
constexpr AuthorizationFacts kUnechoedAuthorization{0, 6, 5201, 1, 7, 0, 3, 1};
constexpr SyncFacts kNudgeSync{0, 0, 5301, 1, 967, 0, 3, 1};
constexpr SyncFacts kTrappingSync{2, 0, 5301, 1, 967, 0, 3, 1};
constexpr SyncFacts kOutOfBandSync{0, 0, 5301, 1, 949, 0, 3, 1};
constexpr CinemaAdmissionFacts kFullFrameCinema{0, 0, 5401, 1, 0, 272, 0, 1, 0, 0, 0, 0, 0};
constexpr CinemaAdmissionFacts kTrappingCinema{2, 0, 5401, 1, 0, 272, 0, 1, 0, 0, 0, 0, 0};
constexpr CinemaAdmissionFacts kLiveSafeMetalFXCinema{0, 0, 5401, 0, 0, 272, 0, 0, 0, 0, 0, 0, 0};

}  // namespace ravo::orx
