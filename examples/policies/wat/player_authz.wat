;; player_authz as an allow-list: may a paired device run this remote command?
;;
;; The allow-list is a data segment of entries, three i32 each: the command, the grant bit it needs and
;; the least role that may send it; a loop finds the command's entry, and an entry for command 0 ends
;; the list. Reasons, first failing rule wins: 1 unpaired, 2 tokenExpired, 6 unknownCommand,
;; 3 rateLimited, 4 missingGrant, 7 needsAdmin, 5 notController, 0 allowed.
;; Roles: 1 renderer, 2 controller, 3 admin. Control modes: 1 shared, 2 admin-only.
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (memory 1)
  (data (i32.const 0)
    "\01\00\00\00\01\00\00\00\01\00\00\00"  ;; play: playback, renderer
    "\02\00\00\00\01\00\00\00\01\00\00\00"  ;; pause
    "\03\00\00\00\01\00\00\00\01\00\00\00"  ;; seek
    "\04\00\00\00\02\00\00\00\01\00\00\00"  ;; volume: volume, renderer
    "\05\00\00\00\04\00\00\00\02\00\00\00"  ;; next track: queue, controller
    "\07\00\00\00\04\00\00\00\02\00\00\00"  ;; edit queue
    "\06\00\00\00\20\00\00\00\02\00\00\00"  ;; show on the main screen: main screen, controller
    "\08\00\00\00\40\00\00\00\03\00\00\00"  ;; change settings: settings, admin
    "\09\00\00\00\80\00\00\00\03\00\00\00"  ;; pair a new device: pairing, admin
    "\00\00\00\00\00\00\00\00\00\00\00\00") ;; the end of the list

  (func $answer (param $allowed i32) (param $command i32) (param $reason i32) (result i32)
    (drop (call $emit (i32.const 5201) (local.get $allowed) (local.get $command) (local.get $reason)
                      (i32.const 3)))
    (local.get $allowed))

  (func (export "decide")
        (param $role i32) (param $command i32) (param $grantFlags i32)
        (param $tokenAgeMilliseconds i32) (param $tokenTTLMilliseconds i32)
        (param $rateUsed i32) (param $rateLimit i32) (param $controlMode i32)
        (result i32)
    (local $entry i32)
    (local $leastRole i32)
    (if (i32.or (i32.lt_s (local.get $role) (i32.const 1)) (i32.gt_s (local.get $role) (i32.const 3)))
      (then (return (call $answer (i32.const 0) (local.get $command) (i32.const 1)))))
    ;; The pairing token is live while 0 <= age < TTL.
    (if (i32.or (i32.lt_s (local.get $tokenAgeMilliseconds) (i32.const 0))
                (i32.ge_s (local.get $tokenAgeMilliseconds) (local.get $tokenTTLMilliseconds)))
      (then (return (call $answer (i32.const 0) (local.get $command) (i32.const 2)))))

    (block $found
      (loop $scan
        (br_if $found (i32.eqz (i32.load (local.get $entry))))
        (br_if $found (i32.eq (i32.load (local.get $entry)) (local.get $command)))
        (local.set $entry (i32.add (local.get $entry) (i32.const 12)))
        (br $scan)))
    (if (i32.eqz (i32.load (local.get $entry)))
      (then (return (call $answer (i32.const 0) (local.get $command) (i32.const 6)))))
    (local.set $leastRole (i32.load offset=8 (local.get $entry)))

    ;; A negative count is not trusted.
    (if (i32.or (i32.lt_s (local.get $rateUsed) (i32.const 0))
                (i32.ge_s (local.get $rateUsed) (local.get $rateLimit)))
      (then (return (call $answer (i32.const 0) (local.get $command) (i32.const 3)))))
    (if (i32.eqz (i32.and (local.get $grantFlags) (i32.load offset=4 (local.get $entry))))
      (then (return (call $answer (i32.const 0) (local.get $command) (i32.const 4)))))
    (if (i32.and (i32.lt_s (local.get $role) (i32.const 3))
                 (i32.or (i32.eq (local.get $leastRole) (i32.const 3))
                         (i32.eq (local.get $controlMode) (i32.const 2))))
      (then (return (call $answer (i32.const 0) (local.get $command) (i32.const 7)))))
    (if (i32.or (i32.and (i32.ne (local.get $controlMode) (i32.const 1))
                         (i32.ne (local.get $controlMode) (i32.const 2)))
                (i32.lt_s (local.get $role) (local.get $leastRole)))
      (then (return (call $answer (i32.const 0) (local.get $command) (i32.const 5)))))
    (call $answer (i32.const 1) (local.get $command) (i32.const 0))))
