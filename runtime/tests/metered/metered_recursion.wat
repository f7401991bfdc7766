;; decide(n, pages) recurses n deep, then grows memory by `pages`; emits [5302, depth, grow's result,
;; pages now, the value the start function stored]. A deep n exhausts the call stack; growth past the
;; cap returns -1.
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (memory 1)
  (global $started (mut i32) (i32.const 0))
  (func $init (global.set $started (i32.const 7)))
  (start $init)
  (func $depth (param $n i32) (result i32)
    (if (result i32) (i32.le_s (local.get $n) (i32.const 0))
      (then (i32.const 0))
      (else (i32.add (i32.const 1) (call $depth (i32.sub (local.get $n) (i32.const 1)))))))
  (func (export "decide") (param $n i32) (param $pages i32) (param i32 i32 i32 i32 i32 i32) (result i32)
    (drop (call $emit (i32.const 5302) (call $depth (local.get $n)) (memory.grow (local.get $pages))
                      (memory.size) (global.get $started)))
    (i32.const 0)))
