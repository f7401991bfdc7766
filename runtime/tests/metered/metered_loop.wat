;; decide(n) folds 1..n into a rolling hash (h = h * 31 + i) and emits [5301, 2, 1000, h, n]: a large n
;; runs out of fuel. Each iteration depends on the last, so no compiler turns the loop into a formula or
;; vector code: the benchmarks compare metered and unmetered native code on the loop itself.
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (func (export "decide") (param $n i32) (param i32 i32 i32 i32 i32 i32 i32) (result i32)
    (local $i i32) (local $sum i32)
    (block $done
      (loop $again
        (br_if $done (i32.ge_u (local.get $i) (local.get $n)))
        (local.set $i (i32.add (local.get $i) (i32.const 1)))
        (local.set $sum (i32.add (i32.mul (local.get $sum) (i32.const 31)) (local.get $i)))
        (br $again)))
    (drop (call $emit (i32.const 5301) (i32.const 2) (i32.const 1000) (local.get $sum) (local.get $n)))
    (i32.const 2)))
