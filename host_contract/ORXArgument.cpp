#include <ravo-orx/host_contract/ORXArgument.h>

#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>

namespace ravo::orx {

ORXArgument::ORXArgument(std::string name, ORXTypedValue value)
    : name_(ORXValidation::asciiIdentifier(name, false, "argument name")), value_(std::move(value)) {}

ORXCanonicalValue ORXArgument::canonicalValue() const {
  return ORXCanonicalValue::object({{"name", ORXCanonicalForm::text(name_)}, {"value", value_.canonicalValue()}});
}

}  // namespace ravo::orx
