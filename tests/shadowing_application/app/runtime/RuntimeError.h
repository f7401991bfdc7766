#pragma once
// The application's own runtime/RuntimeError.h: only the application's sources may ever include it.
#ifndef APP_OWN_HEADERS
#error "a package header was resolved to the application's own runtime/RuntimeError.h"
#endif
#include <string>

struct RuntimeError {
  std::string message = "the application's own RuntimeError";
};
