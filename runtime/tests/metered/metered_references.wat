;; decide(reads) reads the table's reference `reads` times in a loop and emits [5304, reads, 0, 0, 0]:
;; each branch is charged the references read so far in the call, so 700 reads cost about half the
;; fuel and 1,000 run out; a count left over from an earlier call would make the next one run out too.
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (table 1 externref)
  (func (export "decide") (param $reads i32) (param i32 i32 i32 i32 i32 i32 i32) (result i32) (local $i i32)
    (block $done
      (loop $again
        (br_if $done (i32.ge_u (local.get $i) (local.get $reads)))
        (drop (table.get 0 (i32.const 0)))
        (local.set $i (i32.add (local.get $i) (i32.const 1)))
        (br $again)))
    (drop (call $emit (i32.const 5304) (local.get $reads) (i32.const 0) (i32.const 0) (i32.const 0)))
    (i32.const 4)))
