;; cinema_admission — which upscaling route may the cinema pipeline use for live playback?
;;
;; decide(sourceFPSX100, targetFPSX100, sourceReservoirMilliseconds, headroom, thermalState,
;;        memoryPressure, bridgeTenthsMilliseconds, temporalTenthsMilliseconds,
;;        interpolationTenthsMilliseconds, metalFXTenthsMilliseconds, finalDetailTenthsMilliseconds,
;;        modelTenthsMilliseconds, modelSampleCount) -> route
;; emits [5401, route, sparseAnchorIntervalFrames, safeBudgetTenthsMilliseconds, reason]
;;
;; Routes: 0 metalFXOnly, 1 fullFrameML, 2 sparseAnchorResearch, 3 calibration, 4 measurementRequired.
;;
;; The safe budget is the share of the target frame time that upscaling may take: 68 % of it, less
;; `headroom` percentage points that the host keeps for other work (0..50). At 25 fps a frame lasts
;; 400 tenths of a millisecond, so the budget is 272. Costs are summed in 64 bits.
;;
;; Rules, first match wins:
;;   measurementRequired/invalidFacts  a rate <= 0, a negative reservoir, cost or sample count,
;;                                     headroom outside 0..50, thermal state outside 0..3 or memory
;;                                     pressure outside 0..2
;;   metalFXOnly/thermalOrMemory       thermal state >= 2 (serious) or memory pressure >= 2
;;   metalFXOnly/sourceReservoir       under 2 s of decoded source buffered: no slack for ML stalls
;;   metalFXOnly/nonMLOverBudget       even bridge + temporal + interpolation + MetalFX + final detail
;;                                     exceed the budget
;;   calibration/calibration           fewer than 3 model samples: measure before trusting the cost
;;   fullFrameML/liveSafe              bridge + temporal + interpolation + model + final detail fit
;;   sparseAnchorResearch/sparseResearch  otherwise run the model on every Nth frame, N the model cost
;;                                     over what each frame leaves spare (at least 2, at most 10000);
;;                                     with nothing spare, metalFXOnly/nonMLOverBudget
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))

  (func $answer (param $route i32) (param $interval i32) (param $budget i32) (param $reason i32) (result i32)
    (drop (call $emit (i32.const 5401) (local.get $route) (local.get $interval) (local.get $budget)
                      (local.get $reason)))
    (local.get $route))

  (func $outside (param $value i32) (param $lowest i32) (param $highest i32) (result i32)
    (i32.or (i32.lt_s (local.get $value) (local.get $lowest)) (i32.gt_s (local.get $value) (local.get $highest))))

  (func $wide (param $value i32) (result i64) (i64.extend_i32_s (local.get $value)))

  (func (export "decide")
        (param $sourceFPSX100 i32) (param $targetFPSX100 i32) (param $reservoir i32) (param $headroom i32)
        (param $thermal i32) (param $memory i32) (param $bridge i32) (param $temporal i32)
        (param $interpolation i32) (param $metalFX i32) (param $finalDetail i32) (param $model i32)
        (param $samples i32)
        (result i32)
    (local $budget i32)
    (local $perFrame i64)
    (local $spare i64)
    (local $interval i64)

    (if (i32.or
          (i32.or (i32.le_s (local.get $sourceFPSX100) (i32.const 0))
                  (i32.le_s (local.get $targetFPSX100) (i32.const 0)))
          (i32.or
            (i32.or (call $outside (local.get $headroom) (i32.const 0) (i32.const 50))
                    (i32.or (call $outside (local.get $thermal) (i32.const 0) (i32.const 3))
                            (call $outside (local.get $memory) (i32.const 0) (i32.const 2))))
            (i32.lt_s (local.get $reservoir) (i32.const 0))))
      (then (return (call $answer (i32.const 4) (i32.const 0) (i32.const 0) (i32.const 6)))))
    (if (i32.or
          (i32.or (i32.lt_s (local.get $bridge) (i32.const 0)) (i32.lt_s (local.get $temporal) (i32.const 0)))
          (i32.or
            (i32.or (i32.lt_s (local.get $interpolation) (i32.const 0)) (i32.lt_s (local.get $metalFX) (i32.const 0)))
            (i32.or (i32.or (i32.lt_s (local.get $finalDetail) (i32.const 0)) (i32.lt_s (local.get $model) (i32.const 0)))
                    (i32.lt_s (local.get $samples) (i32.const 0)))))
      (then (return (call $answer (i32.const 4) (i32.const 0) (i32.const 0) (i32.const 6)))))

    ;; frame time in tenths of a millisecond = 1,000,000 / fps×100; budget = frame time × (68 − headroom) %
    (local.set $budget
      (i32.div_u (i32.mul (i32.div_u (i32.const 1000000) (local.get $targetFPSX100))
                          (i32.sub (i32.const 68) (local.get $headroom)))
                 (i32.const 100)))

    (if (i32.or (i32.ge_s (local.get $thermal) (i32.const 2)) (i32.ge_s (local.get $memory) (i32.const 2)))
      (then (return (call $answer (i32.const 0) (i32.const 0) (local.get $budget) (i32.const 1)))))

    (if (i32.lt_s (local.get $reservoir) (i32.const 2000))
      (then (return (call $answer (i32.const 0) (i32.const 0) (local.get $budget) (i32.const 2)))))

    ;; what every frame pays besides the upscaler itself
    (local.set $perFrame
      (i64.add (i64.add (call $wide (local.get $bridge)) (call $wide (local.get $temporal)))
               (i64.add (call $wide (local.get $interpolation)) (call $wide (local.get $finalDetail)))))

    (if (i64.gt_s (i64.add (local.get $perFrame) (call $wide (local.get $metalFX))) (call $wide (local.get $budget)))
      (then (return (call $answer (i32.const 0) (i32.const 0) (local.get $budget) (i32.const 3)))))

    (if (i32.lt_s (local.get $samples) (i32.const 3))
      (then (return (call $answer (i32.const 3) (i32.const 0) (local.get $budget) (i32.const 5)))))

    (if (i64.le_s (i64.add (local.get $perFrame) (call $wide (local.get $model))) (call $wide (local.get $budget)))
      (then (return (call $answer (i32.const 1) (i32.const 0) (local.get $budget) (i32.const 0)))))

    (local.set $spare (i64.sub (call $wide (local.get $budget)) (local.get $perFrame)))
    (if (i64.le_s (local.get $spare) (i64.const 0))
      (then (return (call $answer (i32.const 0) (i32.const 0) (local.get $budget) (i32.const 3)))))

    ;; ceil(model / spare); the model alone overflows the spare time here, so this is at least 2
    (local.set $interval
      (i64.div_u (i64.sub (i64.add (call $wide (local.get $model)) (local.get $spare)) (i64.const 1))
                 (local.get $spare)))
    (if (i64.gt_s (local.get $interval) (i64.const 10000))
      (then (local.set $interval (i64.const 10000))))
    (call $answer (i32.const 2) (i32.wrap_i64 (local.get $interval)) (local.get $budget) (i32.const 4))))
