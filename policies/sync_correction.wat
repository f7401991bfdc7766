;; sync_correction — how should playback steer its clock toward the reference?
;;
;; decide(driftMilliseconds, roundTripMilliseconds, jitterMilliseconds, bufferAheadMilliseconds,
;;        rateX100, stallCount, syncAgeMilliseconds, toleranceMilliseconds) -> action
;; emits [5301, action, rateX1000, correctionMilliseconds, reason]
;;
;; Drift is local position minus reference position: positive means playback runs ahead.
;; Actions: 0 hold (rate 1000, no correction), 1 nudge (rate inside 950..1050), 2 seek (by -drift).
;;
;; Rules, first match wins:
;;   5 invalidFacts         tolerance <= 0, a negative measurement, a stopped or reversed rate, or a
;;                          drift beyond one day: hold
;;   1 unreliable           the sync sample is older than 5 s, the round trip exceeds 1 s or the jitter
;;                          exceeds the tolerance: the drift cannot be trusted, hold
;;   0 withinTolerance      |drift| <= tolerance: hold
;;   4 seekDrift            |drift| > 500 ms (nudging at 5 % would take over 10 s): seek by -drift
;;   2 bufferProtection     behind (drift < 0, would speed up) while stalling or with under 1 s
;;                          buffered: speeding up would starve the buffer, hold
;;   3 nudgeDrift           rate moves away from 1000 by half the drift in ms, at most 50, slower when
;;                          ahead and faster when behind (drift 66 gives 967)
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))

  (func $answer (param $action i32) (param $rateX1000 i32) (param $correction i32) (param $reason i32)
                (result i32)
    (drop (call $emit (i32.const 5301) (local.get $action) (local.get $rateX1000) (local.get $correction)
                      (local.get $reason)))
    (local.get $action))

  (func $hold (param $reason i32) (result i32)
    (call $answer (i32.const 0) (i32.const 1000) (i32.const 0) (local.get $reason)))

  (func $abs (param $value i32) (result i32)
    (select (i32.sub (i32.const 0) (local.get $value)) (local.get $value)
            (i32.lt_s (local.get $value) (i32.const 0))))

  (func (export "decide")
        (param $drift i32) (param $roundTrip i32) (param $jitter i32) (param $bufferAhead i32)
        (param $rateX100 i32) (param $stallCount i32) (param $syncAge i32) (param $tolerance i32)
        (result i32)
    (local $distance i32)
    (local $delta i32)

    (if (i32.or
          (i32.or (i32.le_s (local.get $tolerance) (i32.const 0))
                  (i32.le_s (local.get $rateX100) (i32.const 0)))
          (i32.or
            (i32.or (i32.lt_s (local.get $roundTrip) (i32.const 0)) (i32.lt_s (local.get $jitter) (i32.const 0)))
            (i32.or
              (i32.or (i32.lt_s (local.get $bufferAhead) (i32.const 0))
                      (i32.lt_s (local.get $stallCount) (i32.const 0)))
              (i32.or (i32.lt_s (local.get $syncAge) (i32.const 0))
                      (i32.or (i32.lt_s (local.get $drift) (i32.const -86400000))
                              (i32.gt_s (local.get $drift) (i32.const 86400000)))))))
      (then (return (call $hold (i32.const 5)))))

    (if (i32.or (i32.gt_s (local.get $syncAge) (i32.const 5000))
                (i32.or (i32.gt_s (local.get $roundTrip) (i32.const 1000))
                        (i32.gt_s (local.get $jitter) (local.get $tolerance))))
      (then (return (call $hold (i32.const 1)))))

    (local.set $distance (call $abs (local.get $drift)))
    (if (i32.le_s (local.get $distance) (local.get $tolerance))
      (then (return (call $hold (i32.const 0)))))

    (if (i32.gt_s (local.get $distance) (i32.const 500))
      (then (return (call $answer (i32.const 2) (i32.const 1000)
                                  (i32.sub (i32.const 0) (local.get $drift)) (i32.const 4)))))

    (if (i32.and (i32.lt_s (local.get $drift) (i32.const 0))
                 (i32.or (i32.gt_s (local.get $stallCount) (i32.const 0))
                         (i32.lt_s (local.get $bufferAhead) (i32.const 1000))))
      (then (return (call $hold (i32.const 2)))))

    (local.set $delta (i32.div_u (local.get $distance) (i32.const 2)))
    (if (i32.gt_s (local.get $delta) (i32.const 50))
      (then (local.set $delta (i32.const 50))))
    (call $answer (i32.const 1)
                  (select (i32.sub (i32.const 1000) (local.get $delta))
                          (i32.add (i32.const 1000) (local.get $delta))
                          (i32.gt_s (local.get $drift) (i32.const 0)))
                  (i32.const 0) (i32.const 3))))
