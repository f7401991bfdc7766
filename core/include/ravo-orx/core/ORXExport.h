#ifndef RAVO_ORX_CORE_ORX_EXPORT_H
#define RAVO_ORX_CORE_ORX_EXPORT_H
/* What the shared library libravo-orx exports. Its objects are compiled with hidden visibility, so
 * only declarations marked RAVO_ORX_API (the C API, the decisions runtime and the canonical core)
 * are in its dynamic symbol table; a version script fixes that set (cmake/ravo-orx.map). In a static
 * build the mark changes nothing. Plain C, so that <ravo-orx/orx.h> can use it. */
#define RAVO_ORX_API __attribute__((visibility("default")))
#endif
