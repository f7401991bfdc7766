;; decide(fill, copy, at) fills `fill` bytes at 0 with 9, copies `copy` bytes from 0 to 512 KiB and
;; writes the 8-byte segment at `at`; emits [5303, byte 0, byte 512 KiB, byte at, 0]. Lengths past the
;; fuel exhaust it; an `at` past the memory traps.
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (memory 16)
  (data $blob "abcdefgh")
  (func (export "decide") (param $fill i32) (param $copy i32) (param $at i32) (param i32 i32 i32 i32 i32)
    (result i32)
    (memory.fill (i32.const 0) (i32.const 9) (local.get $fill))
    (memory.copy (i32.const 524288) (i32.const 0) (local.get $copy))
    (memory.init $blob (local.get $at) (i32.const 0) (i32.const 8))
    (drop (call $emit (i32.const 5303) (i32.load8_u (i32.const 0)) (i32.load8_u (i32.const 524288))
                      (i32.load8_u (local.get $at)) (i32.const 0)))
    (i32.const 3)))
