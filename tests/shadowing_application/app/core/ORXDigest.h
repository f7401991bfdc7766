#pragma once
// The application's own core/ORXDigest.h: only the application's sources may ever include it.
#ifndef APP_OWN_HEADERS
#error "a package header was resolved to the application's own core/ORXDigest.h"
#endif
template <class E>
int rawValue(E) {
  return -1;  // unconstrained, like the name the package used to put at global scope
}
