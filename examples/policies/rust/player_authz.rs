//! player_authz as an allow-list: may a paired device run this remote command?
//!
//! Each entry of the allow-list names a command, the grant bit it needs and the least role that may
//! send it; a loop finds the command's entry. Reasons, first failing rule wins: 1 unpaired,
//! 2 tokenExpired, 6 unknownCommand, 3 rateLimited, 4 missingGrant, 7 needsAdmin, 5 notController,
//! 0 allowed. Roles: 1 renderer, 2 controller, 3 admin. Control modes: 1 shared, 2 admin-only.
#![no_std]

use orx_policy::{emit, AUTHZ_TAG};

const POLICY_VERSION: i32 = 3;
const RENDERER: i32 = 1;
const CONTROLLER: i32 = 2;
const ADMIN: i32 = 3;
const SHARED_CONTROL: i32 = 1;
const ADMIN_ONLY: i32 = 2;

struct Entry {
    command: i32,
    grant: i32,
    least_role: i32,
}

const fn entry(command: i32, grant: i32, least_role: i32) -> Entry {
    Entry { command, grant, least_role }
}

static ALLOW_LIST: [Entry; 9] = [
    entry(1, 1, RENDERER), entry(2, 1, RENDERER), entry(3, 1, RENDERER), // play, pause, seek: playback
    entry(4, 2, RENDERER),                                                // volume
    entry(5, 4, CONTROLLER), entry(7, 4, CONTROLLER),                     // next track, edit queue: queue
    entry(6, 32, CONTROLLER),                                             // show on the main screen
    entry(8, 64, ADMIN),                                                  // change settings
    entry(9, 128, ADMIN),                                                 // pair a new device
];

fn answer(allowed: bool, command: i32, reason: i32) -> i32 {
    emit(AUTHZ_TAG, allowed as i32, command, reason, POLICY_VERSION);
    allowed as i32
}

#[no_mangle]
pub extern "C" fn decide(role: i32, command: i32, grant_flags: i32, token_age_milliseconds: i32,
                         token_ttl_milliseconds: i32, rate_used: i32, rate_limit: i32, control_mode: i32) -> i32 {
    if !(RENDERER..=ADMIN).contains(&role) {
        return answer(false, command, 1);
    }
    // The pairing token is live while 0 <= age < TTL.
    if token_age_milliseconds < 0 || token_age_milliseconds >= token_ttl_milliseconds {
        return answer(false, command, 2);
    }
    let entry = match ALLOW_LIST.iter().find(|entry| entry.command == command) {
        Some(entry) => entry,
        None => return answer(false, command, 6),
    };
    // A negative count is not trusted.
    if rate_used < 0 || rate_used >= rate_limit {
        return answer(false, command, 3);
    }
    if grant_flags & entry.grant == 0 {
        return answer(false, command, 4);
    }
    if role < ADMIN && (entry.least_role == ADMIN || control_mode == ADMIN_ONLY) {
        return answer(false, command, 7);
    }
    if (control_mode != SHARED_CONTROL && control_mode != ADMIN_ONLY) || role < entry.least_role {
        return answer(false, command, 5);
    }
    answer(true, command, 0)
}
