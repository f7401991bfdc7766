#pragma once
// Checks on the identifiers and texts of the host contract: short ASCII identifiers, `module::Type`
// enum identities, sorted identifier sets, UTF-8 well-formedness and the code-point key order.

#include <string>
#include <string_view>
#include <vector>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

namespace ORXValidation {

// Lowercase ASCII identifier of at most 96 characters: [a-z][a-z0-9._-]*, containing a "." when
// qualified. Failures are "orx.v051.value_invalid" with messages that begin with `label`.
RAVO_ORX_API std::string asciiIdentifier(std::string_view value, bool qualified, std::string_view label);

// A closed enum identity "module::Type": the module an unqualified identifier, the type name
// [A-Z][A-Za-z0-9_]*.
RAVO_ORX_API std::string qualifiedEnumTypeID(std::string_view value, std::string_view label);

// Every value checked as an identifier, none repeated; returned in ascending byte order.
std::vector<std::string> sortedUniqueASCII(std::vector<std::string> values, std::string_view label,
                                           bool qualified);

// True when `a` sorts strictly before `b` by Unicode scalar value. On UTF-8 text that is the order of
// the bytes, which differs from UTF-16 order above U+FFFF.
RAVO_ORX_API bool compareUnicodeCodePoints(std::string_view a, std::string_view b);

// Well-formed UTF-8: shortest forms only, no surrogates, nothing above U+10FFFF.
RAVO_ORX_API bool isValidUTF8(std::string_view bytes);

}  // namespace ORXValidation

}  // namespace ravo::orx
