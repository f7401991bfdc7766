/* player_authz as an allow-list: may a paired device run this remote command?
 *
 * Each entry of the allow-list names a command, the grant bit it needs and the least role that may
 * send it; a loop finds the command's entry, and an entry for command 0 ends the list. Reasons, first failing rule wins: 1 unpaired,
 * 2 tokenExpired, 6 unknownCommand, 3 rateLimited, 4 missingGrant, 7 needsAdmin, 5 notController,
 * 0 allowed. Roles: 1 renderer, 2 controller, 3 admin. Control modes: 1 shared, 2 admin-only. */
#include <orx_policy.h>

#define POLICY_VERSION 3

enum { RENDERER = 1, CONTROLLER = 2, ADMIN = 3 };
enum { SHARED_CONTROL = 1, ADMIN_ONLY = 2 };

struct Entry {
  int32_t command;
  int32_t grant;
  int32_t leastRole;
};

static const struct Entry kAllowList[] = {
    {1, 1, RENDERER},   {2, 1, RENDERER},     {3, 1, RENDERER},   /* play, pause, seek: playback */
    {4, 2, RENDERER},                                             /* volume */
    {5, 4, CONTROLLER}, {7, 4, CONTROLLER},                       /* next track, edit queue: queue */
    {6, 32, CONTROLLER},                                          /* show on the main screen */
    {8, 64, ADMIN},                                               /* change settings */
    {9, 128, ADMIN},                                              /* pair a new device */
    {0, 0, 0},                                                    /* the end of the list */
};

static int32_t answer(int32_t allowed, int32_t command, int32_t reason) {
  orx_emit(ORX_AUTHZ_TAG, allowed, command, reason, POLICY_VERSION);
  return allowed;
}

ORX_DECIDE_AUTHZ {
  if (role < RENDERER || role > ADMIN) return answer(0, command, 1);
  /* The pairing token is live while 0 <= age < TTL. */
  if (tokenAgeMilliseconds < 0 || tokenAgeMilliseconds >= tokenTTLMilliseconds) return answer(0, command, 2);

  const struct Entry* entry = kAllowList;
  while (entry->command != 0 && entry->command != command) ++entry;
  if (entry->command == 0) return answer(0, command, 6);

  /* A negative count is not trusted. */
  if (rateUsed < 0 || rateUsed >= rateLimit) return answer(0, command, 3);
  if ((grantFlags & entry->grant) == 0) return answer(0, command, 4);
  if (role < ADMIN && (entry->leastRole == ADMIN || controlMode == ADMIN_ONLY)) return answer(0, command, 7);
  if ((controlMode != SHARED_CONTROL && controlMode != ADMIN_ONLY) || role < entry->leastRole) {
    return answer(0, command, 5);
  }
  return answer(1, command, 0);
}
