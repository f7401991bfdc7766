#include "host_contract/ORXArgument.h"

#include "core/ORXValidation.h"
#include "host_contract/ORXCanonicalForm.h"

ORXArgument::ORXArgument(std::string name, ORXTypedValue value)
    : name_(ORXValidation::asciiIdentifier(name, false, "argument name")), value_(std::move(value)) {}

ORXCanonicalValue ORXArgument::canonicalValue() const {
  return ORXCanonicalValue::object({{"name", ORXCanonicalForm::text(name_)}, {"value", value_.canonicalValue()}});
}
