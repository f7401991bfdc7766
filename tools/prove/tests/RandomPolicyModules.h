#pragma once
// Test support: random policy modules in WebAssembly text, deterministic for a seed, covering every
// instruction family the prover models: i32 and i64 arithmetic, bit operations, shifts and rotations,
// clz/ctz/popcnt, comparisons, eqz, wrapping and extensions, select; locals and globals; memory with
// data segments, loads and stores of every width and sign, memory.size and memory.grow, accesses out
// of bounds; blocks, if, br, br_if, br_table, return, loops whose iteration count depends on the facts
// (within the unroll bound), calls of helper functions, emits anywhere (only the last counts),
// unreachable and division traps. decide takes eight facts and emits a sync record.

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace ravo::orx::prover_test {

class RandomPolicyModule {
 public:
  explicit RandomPolicyModule(std::uint64_t seed) : random_(seed) {}

  std::string wat() {
    std::string text = "(module\n  (import \"output\" \"emit\" (func $emit (param i32 i32 i32 i32 i32) (result i32)))\n";
    text += "  (memory " + std::to_string(1 + pick(2)) + " 3)\n";
    for (int segment = 0, count = 1 + pick(3); segment < count; ++segment) text += dataSegment();
    text += "  (global $g0 (mut i32) (i32.const " + constant32() + "))\n";
    text += "  (global $g1 (mut i64) (i64.const " + constant64() + "))\n";
    text += "  (global $k i32 (i32.const " + constant32() + "))\n";
    scope_ = {{"$p0", "$p1"}, {}, false};
    text += "  (func $h0 (param $p0 i32) (param $p1 i32) (result i32) " + expr32(3) + ")\n";
    scope_ = {{}, {"$q"}, false};
    text += "  (func $h1 (param $q i64) (result i64) " + expr64(3) + ")\n";
    text += "  (func $h2 (param $n i32) (result i32) (local $s i32) (local $j i32)\n"
            "    (block $out (loop $top\n"
            "      (br_if $out (i32.ge_u (local.get $j) (i32.and (local.get $n) (i32.const 7))))\n"
            "      (local.set $s (i32.add (local.get $s) (call $h0 (local.get $j) (local.get $n))))\n"
            "      (local.set $j (i32.add (local.get $j) (i32.const 1)))\n"
            "      (br $top)))\n"
            "    (local.get $s))\n";
    scope_ = {{"$f0", "$f1", "$f2", "$f3", "$f4", "$f5", "$f6", "$f7", "$a", "$b"}, {"$c", "$d"}, true};
    text += "  (func (export \"decide\")";
    for (int f = 0; f < 8; ++f) text += " (param $f" + std::to_string(f) + " i32)";
    text += " (result i32)\n    (local $a i32) (local $b i32) (local $c i64) (local $d i64)";
    text += " (local $i0 i32) (local $i1 i32) (local $i2 i32)\n";
    for (int statement = 0, count = 3 + pick(7); statement < count; ++statement) text += "    " + statement_(2) + "\n";
    // Half the modules end with a record close to valid (an action, the rate and correction a hold
    // needs unless a condition says otherwise, a reason just past its range at times), so that the
    // host accepts some and refuses others at each of its checks.
    if (pick(2)) {
      text += "    (local.set $a (i32.rem_u (local.get $a) (i32.const 3)))\n";
      text += "    (drop (call $emit (i32.const 5301) (local.get $a) (select (i32.const 1000) " + expr32(1) + " " +
              expr32(1) + ") (select (i32.const 0) " + expr32(1) + " " + expr32(1) + ") (i32.rem_u " + expr32(1) +
              " (i32.const 7))))\n";
    } else {
      text += "    (drop (call $emit (i32.const 5301) (local.get $a) " + expr32(2) + " " + expr32(2) + " " +
              expr32(2) + "))\n";
    }
    text += "    (local.get $a)))\n";
    return text;
  }

 private:
  struct Scope {
    std::vector<std::string> locals32;
    std::vector<std::string> locals64;
    bool inDecide;  // memory, globals, helpers and statements are available
  };

  int pick(int choices) { return static_cast<int>(random_() % static_cast<std::uint64_t>(choices)); }
  template <class T>
  const T& oneOf(const std::vector<T>& items) { return items[static_cast<std::size_t>(pick(static_cast<int>(items.size())))]; }

  std::string constant32() {
    static const std::vector<std::string> interesting{"0", "1", "-1", "2", "7", "31", "32", "33", "255", "256",
                                                      "65535", "65536", "2147483647", "-2147483648", "-7"};
    if (pick(3)) return oneOf(interesting);
    return std::to_string(static_cast<std::int32_t>(random_()));
  }
  std::string constant64() {
    static const std::vector<std::string> interesting{"0", "1", "-1", "63", "64", "65", "4294967295", "4294967296",
                                                      "9223372036854775807", "-9223372036854775808", "-3"};
    if (pick(3)) return oneOf(interesting);
    return std::to_string(static_cast<std::int64_t>(random_()));
  }

  std::string dataSegment() {
    const int offset = pick(4) == 0 ? 65520 + pick(16) : pick(160);
    std::string bytes;
    static const char* const kHex = "0123456789abcdef";
    for (int i = 0, count = 1 + pick(24); i < count && offset + i < 65536; ++i) {
      const int byte = pick(3) == 0 ? 0 : pick(256);
      bytes += std::string("\\") + kHex[byte >> 4] + kHex[byte & 15];
    }
    return "  (data (i32.const " + std::to_string(offset) + ") \"" + bytes + "\")\n";
  }

  std::string local32() {
    return scope_.locals32.empty() ? "(i32.const 3)" : "(local.get " + oneOf(scope_.locals32) + ")";
  }

  // An address that is mostly within the first page, sometimes anywhere.
  std::string address() {
    if (pick(6) == 0) return expr32(1);
    return "(i32.and " + expr32(1) + " (i32.const " + oneOf(std::vector<std::string>{"255", "65535", "131071"}) + "))";
  }
  std::string offset() { return pick(3) == 0 ? " offset=" + std::to_string(pick(3) == 0 ? 65530 : pick(16)) : ""; }
  // A divisor that is rarely zero, so that most calls get past their divisions.
  std::string divisor32() { return pick(5) == 0 ? expr32(1) : "(i32.or " + expr32(1) + " (i32.const 1))"; }
  std::string divisor64() { return pick(5) == 0 ? expr64(1) : "(i64.or " + expr64(1) + " (i64.const 1))"; }

  std::string expr32(int depth) {
    const int leaves = 3, all = scope_.inDecide ? 14 : 10;
    switch (depth <= 0 ? pick(leaves) : pick(all)) {
      case 0: return "(i32.const " + constant32() + ")";
      case 1: return local32();
      case 2: return scope_.inDecide && pick(2) ? "(global.get " + oneOf(std::vector<std::string>{"$g0", "$k"}) + ")"
                                                 : local32();
      case 3: return "(i32." + oneOf(std::vector<std::string>{"clz", "ctz", "popcnt", "eqz", "extend8_s", "extend16_s"}) +
                     " " + expr32(depth - 1) + ")";
      case 4: {
        static const std::vector<std::string> ops{"add", "sub", "mul", "and", "or", "xor", "shl", "shr_s", "shr_u", "rotl", "rotr"};
        return "(i32." + oneOf(ops) + " " + expr32(depth - 1) + " " + expr32(depth - 1) + ")";
      }
      case 5: return "(i32." + oneOf(std::vector<std::string>{"div_s", "div_u", "rem_s", "rem_u"}) + " " +
                     expr32(depth - 1) + " " + divisor32() + ")";
      case 6: {
        static const std::vector<std::string> ops{"eq", "ne", "lt_s", "lt_u", "gt_s", "gt_u", "le_s", "le_u", "ge_s", "ge_u"};
        const std::string op = oneOf(ops);
        return pick(2) ? "(i32." + op + " " + expr32(depth - 1) + " " + expr32(depth - 1) + ")"
                       : "(i64." + op + " " + expr64(depth - 1) + " " + expr64(depth - 1) + ")";
      }
      case 7: return pick(2) ? "(i32.wrap_i64 " + expr64(depth - 1) + ")" : "(i64.eqz " + expr64(depth - 1) + ")";
      case 8: return "(select " + expr32(depth - 1) + " " + expr32(depth - 1) + " " + expr32(depth - 1) + ")";
      case 9: return "(i32.and " + expr32(depth - 1) + " (i32.or " + expr32(depth - 1) + " (i32.const 1)))";
      case 10: return "(i32." + oneOf(std::vector<std::string>{"load", "load8_s", "load8_u", "load16_s", "load16_u"}) +
                      offset() + " " + address() + ")";
      case 11: return pick(2) ? std::string("(memory.size)") : "(memory.grow (i32.and " + expr32(depth - 1) + " (i32.const 1)))";
      case 12: return pick(2) ? "(call $h0 " + expr32(depth - 1) + " " + expr32(depth - 1) + ")"
                              : "(call $h2 " + expr32(depth - 1) + ")";
      default:
        return "(block (result i32) (drop (br_if 0 " + expr32(depth - 1) + " " + expr32(depth - 1) + ")) " +
               expr32(depth - 1) + ")";
    }
  }

  std::string expr64(int depth) {
    const int leaves = 3, all = scope_.inDecide ? 11 : 7;
    switch (depth <= 0 ? pick(leaves) : pick(all)) {
      case 0: return "(i64.const " + constant64() + ")";
      case 1: return scope_.locals64.empty() ? "(i64.const 5)" : "(local.get " + oneOf(scope_.locals64) + ")";
      case 2: return "(i64." + oneOf(std::vector<std::string>{"extend_i32_s", "extend_i32_u"}) + " " + expr32(depth - 1) + ")";
      case 3: return "(i64." + oneOf(std::vector<std::string>{"clz", "ctz", "popcnt", "extend8_s", "extend16_s", "extend32_s"}) +
                     " " + expr64(depth - 1) + ")";
      case 4: {
        static const std::vector<std::string> ops{"add", "sub", "mul", "and", "or", "xor", "shl", "shr_s", "shr_u", "rotl", "rotr"};
        return "(i64." + oneOf(ops) + " " + expr64(depth - 1) + " " + expr64(depth - 1) + ")";
      }
      case 5: return "(i64." + oneOf(std::vector<std::string>{"div_s", "div_u", "rem_s", "rem_u"}) + " " +
                     expr64(depth - 1) + " " + divisor64() + ")";
      case 6: return "(select " + expr64(depth - 1) + " " + expr64(depth - 1) + " " + expr32(depth - 1) + ")";
      case 7: return "(i64.extend_i32_u (i32.wrap_i64 " + expr64(depth - 1) + "))";
      case 8: return "(call $h1 " + expr64(depth - 1) + ")";
      case 9: return "(i64." +
                     oneOf(std::vector<std::string>{"load", "load8_s", "load8_u", "load16_s", "load16_u", "load32_s", "load32_u"}) +
                     offset() + " " + address() + ")";
      default: return "(global.get $g1)";
    }
  }

  std::string statements(int depth) {
    std::string text;
    for (int i = 0, count = 1 + pick(3); i < count; ++i) text += " " + statement_(depth);
    return text;
  }

  std::string emit() {
    return "(drop (call $emit " + expr32(1) + " " + expr32(1) + " " + expr32(1) + " " + expr32(1) + " " + expr32(1) + "))";
  }

  std::string statement_(int depth) {
    const int simple = 7;
    switch (depth <= 0 ? pick(simple) : pick(simple + 4)) {
      case 0: return "(local.set " + oneOf(std::vector<std::string>{"$a", "$b"}) + " " + expr32(3) + ")";
      case 1: return "(local.set " + oneOf(std::vector<std::string>{"$c", "$d"}) + " " + expr64(3) + ")";
      case 2: return pick(2) ? "(global.set $g0 " + expr32(2) + ")" : "(global.set $g1 " + expr64(2) + ")";
      case 3: return pick(2) ? "(i32." + oneOf(std::vector<std::string>{"store", "store8", "store16"}) + offset() + " " +
                                   address() + " " + expr32(2) + ")"
                             : "(i64." + oneOf(std::vector<std::string>{"store", "store8", "store16", "store32"}) +
                                   offset() + " " + address() + " " + expr64(2) + ")";
      case 4: return emit();
      case 5: return pick(4) ? "(drop (call $h0 " + expr32(1) + " " + expr32(1) + "))"
                             : "(if " + expr32(2) + " (then unreachable))";
      case 6: return "(if " + expr32(2) + " (then " + emit() + " (return " + expr32(2) + ")))";
      case 7: return "(if " + expr32(2) + " (then" + statements(depth - 1) + ") (else" + statements(depth - 1) + "))";
      case 8: return "(block $x" + std::to_string(depth) + statements(depth - 1) + " (br_if $x" + std::to_string(depth) +
                     " " + expr32(2) + ")" + statements(depth - 1) + ")";
      case 9: {
        const std::string counter = "$i" + std::to_string(depth);
        const std::string bound = pick(2) ? "(i32.const " + std::to_string(pick(6)) + ")"
                                          : "(i32.and " + expr32(1) + " (i32.const 3))";
        return "(local.set " + counter + " (i32.const 0)) (block $out" + std::to_string(depth) + " (loop $top" +
               std::to_string(depth) + " (br_if $out" + std::to_string(depth) + " (i32.ge_u (local.get " + counter +
               ") " + bound + "))" + statements(depth - 1) + " (local.set " + counter + " (i32.add (local.get " +
               counter + ") (i32.const 1))) (br $top" + std::to_string(depth) + ")))";
      }
      default: {
        const std::string d = std::to_string(depth);
        std::string targets;
        for (int t = 0, count = 1 + pick(5); t < count; ++t) targets += " $t" + std::to_string(pick(3)) + "_" + d;
        return "(block $t0_" + d + " (block $t1_" + d + " (block $t2_" + d + " (br_table" + targets + " $t" +
               std::to_string(pick(3)) + "_" + d + " " + expr32(2) + "))" + statements(depth - 1) + ")" +
               statements(depth - 1) + ")";
      }
    }
  }

  std::mt19937_64 random_;
  Scope scope_;
};

// Eight facts: small numbers, the edges of the 32-bit range and random ones.
inline std::vector<std::int32_t> randomFacts(std::mt19937_64& random) {
  static const std::int32_t kEdges[] = {0, 1, -1, 2, 3, 7, 8, 31, 32, 33, 63, 64, 255, 65535, 65536, 2147483647,
                                        -2147483647 - 1};
  std::vector<std::int32_t> facts;
  for (int f = 0; f < 8; ++f) {
    switch (random() % 3) {
      case 0: facts.push_back(kEdges[random() % std::size(kEdges)]); break;
      case 1: facts.push_back(static_cast<std::int32_t>(random() % 41) - 20); break;
      default: facts.push_back(static_cast<std::int32_t>(random()));
    }
  }
  return facts;
}

}  // namespace ravo::orx::prover_test
