#include <ravo-orx/host_contract/ORXDeadline.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx {

ORXDeadlineValue::ORXDeadlineValue(std::string clockDomain, std::int64_t notAfterNanoseconds,
                                   std::int64_t nowNanoseconds)
    : clockDomain_(ORXValidation::asciiIdentifier(clockDomain, true, "deadline clock domain")),
      notAfterNanoseconds_(notAfterNanoseconds),
      nowNanoseconds_(nowNanoseconds) {
  if (notAfterNanoseconds_ < 0 || nowNanoseconds_ < 0) {
    throw ORXError::invalid("orx.v051.deadline_invalid", "deadline values must be nonnegative");
  }
}

ORXCanonicalValue ORXDeadlineValue::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"clock_domain", ORXCanonicalForm::text(clockDomain_)},
      {"not_after_ns", ORXCanonicalForm::i64(notAfterNanoseconds_)},
      {"now_ns", ORXCanonicalForm::i64(nowNanoseconds_)},
  });
}

}  // namespace ravo::orx
