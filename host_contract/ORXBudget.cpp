#include <ravo-orx/host_contract/ORXBudget.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>

namespace ravo::orx {

ORXBudget::ORXBudget(std::int64_t limit, ORXResourceClass resourceClass)
    : limit_(limit), resourceClass_(std::move(resourceClass)) {
  if (limit_ < 0) throw ORXError::invalid("orx.v051.typed_value_invalid", "budget limit must be nonnegative");
}

ORXCanonicalValue ORXBudget::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"limit", ORXCanonicalForm::i64(limit_)},
      {"resource_class", resourceClass_.canonicalValue()},
  });
}

}  // namespace ravo::orx
