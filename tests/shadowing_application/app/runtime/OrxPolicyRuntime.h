#pragma once
// The application's own runtime/OrxPolicyRuntime.h: only the application's sources may ever include it.
#ifndef APP_OWN_HEADERS
#error "a package header was resolved to the application's own runtime/OrxPolicyRuntime.h"
#endif
// Deliberately empty: the package's header of the same name must not be this one.
