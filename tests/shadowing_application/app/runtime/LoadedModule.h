#pragma once
// The application's own runtime/LoadedModule.h: only the application's sources may ever include it.
#ifndef APP_OWN_HEADERS
#error "a package header was resolved to the application's own runtime/LoadedModule.h"
#endif
struct LoadedModule {
  int id = 7;
};
