#include <ravo-orx/host_contract/ORXGenerationFence.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>

namespace ravo::orx {

ORXGenerationFence::ORXGenerationFence(std::string domain, std::int64_t epoch, ORXDigest fenceID)
    : domain_(ORXValidation::asciiIdentifier(domain, true, "generation domain")),
      epoch_(epoch),
      fenceID_(std::move(fenceID)) {
  if (epoch_ < 0) throw ORXError::invalid("orx.v051.typed_value_invalid", "generation epoch must be nonnegative");
}

ORXCanonicalValue ORXGenerationFence::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"domain", ORXCanonicalForm::text(domain_)},
      {"epoch", ORXCanonicalForm::i64(epoch_)},
      {"fence_id", ORXCanonicalForm::digest(fenceID_)},
  });
}

}  // namespace ravo::orx
