;; player_authz — may a paired device run this remote command?
;;
;; decide(role, command, grantFlags, tokenAgeMilliseconds, tokenTTLMilliseconds, rateUsed, rateLimit,
;;        controlMode) -> 1 allow / 0 deny
;; emits [5201, result, command, reason, policyVersion]
;;
;; Roles: 1 renderer (plays what it is sent), 2 controller, 3 admin; anything else is unpaired.
;; Control modes: 1 shared control, 2 admin-only; anything else means remote control is off.
;;
;; Commands, with the grant bit they need and the least role that may send them:
;;   1 play, 2 pause, 3 seek     grant 1  (playback)     renderer
;;   4 volume                    grant 2  (volume)       renderer
;;   5 next track, 7 edit queue  grant 4  (queue)        controller
;;   6 show on the main screen   grant 32 (main screen)  controller
;;   8 change settings           grant 64 (settings)     admin
;;   9 pair a new device         grant 128 (pairing)     admin
;;
;; Reasons, first failing rule wins (who you are, then whether your credentials are live, then what
;; you ask for, then how often, then what you were granted, then whether your role suffices):
;;   1 unpaired, 2 tokenExpired, 6 unknownCommand, 3 rateLimited, 4 missingGrant, 7 needsAdmin,
;;   5 notController, 0 allowed.
(module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))

  (global $policyVersion i32 (i32.const 3))

  (func $answer (param $allowed i32) (param $command i32) (param $reason i32) (result i32)
    (drop (call $emit (i32.const 5201) (local.get $allowed) (local.get $command) (local.get $reason)
                      (global.get $policyVersion)))
    (local.get $allowed))

  (func $deny (param $command i32) (param $reason i32) (result i32)
    (call $answer (i32.const 0) (local.get $command) (local.get $reason)))

  ;; The command's rule: its grant bit in the low 16 bits and its least role above them; 0 when the
  ;; command is unknown.
  (func $commandRule (param $command i32) (result i32)
    (block $unknown
      (block $pairing
        (block $settings
          (block $mainScreen
            (block $queue
              (block $volume
                (block $playback
                  (br_table $unknown $playback $playback $playback $volume $queue $mainScreen $queue
                            $settings $pairing $unknown
                            (local.get $command)))
                (return (i32.const 0x10001)))   ;; playback grant, renderer
              (return (i32.const 0x10002)))     ;; volume grant, renderer
            (return (i32.const 0x20004)))       ;; queue grant, controller
          (return (i32.const 0x20020)))         ;; main-screen grant, controller
        (return (i32.const 0x30040)))           ;; settings grant, admin
      (return (i32.const 0x30080)))             ;; pairing grant, admin
    (i32.const 0))

  (func (export "decide")
        (param $role i32) (param $command i32) (param $grantFlags i32)
        (param $tokenAgeMilliseconds i32) (param $tokenTTLMilliseconds i32)
        (param $rateUsed i32) (param $rateLimit i32) (param $controlMode i32)
        (result i32)
    (local $rule i32)
    (local $leastRole i32)

    ;; Only paired devices may command at all.
    (if (i32.or (i32.lt_s (local.get $role) (i32.const 1)) (i32.gt_s (local.get $role) (i32.const 3)))
      (then (return (call $deny (local.get $command) (i32.const 1)))))

    ;; The pairing token is live while 0 <= age < TTL (a TTL of 0 or less is never live).
    (if (i32.or (i32.lt_s (local.get $tokenAgeMilliseconds) (i32.const 0))
                (i32.ge_s (local.get $tokenAgeMilliseconds) (local.get $tokenTTLMilliseconds)))
      (then (return (call $deny (local.get $command) (i32.const 2)))))

    (local.set $rule (call $commandRule (local.get $command)))
    (if (i32.eqz (local.get $rule))
      (then (return (call $deny (local.get $command) (i32.const 6)))))
    (local.set $leastRole (i32.shr_u (local.get $rule) (i32.const 16)))

    ;; The rate window still has room (a negative count is not trusted).
    (if (i32.or (i32.lt_s (local.get $rateUsed) (i32.const 0))
                (i32.ge_s (local.get $rateUsed) (local.get $rateLimit)))
      (then (return (call $deny (local.get $command) (i32.const 3)))))

    (if (i32.eqz (i32.and (local.get $grantFlags) (i32.and (local.get $rule) (i32.const 0xFFFF))))
      (then (return (call $deny (local.get $command) (i32.const 4)))))

    ;; Admin commands, and every command in admin-only mode, need an admin.
    (if (i32.and (i32.lt_s (local.get $role) (i32.const 3))
                 (i32.or (i32.eq (local.get $leastRole) (i32.const 3))
                         (i32.eq (local.get $controlMode) (i32.const 2))))
      (then (return (call $deny (local.get $command) (i32.const 7)))))

    ;; Remote control must be on, and the role must reach the command's least role.
    (if (i32.or (i32.and (i32.ne (local.get $controlMode) (i32.const 1))
                         (i32.ne (local.get $controlMode) (i32.const 2)))
                (i32.lt_s (local.get $role) (local.get $leastRole)))
      (then (return (call $deny (local.get $command) (i32.const 5)))))

    (call $answer (i32.const 1) (local.get $command) (i32.const 0))))
