#pragma once
// Marks contract facades whose design is deferred to a separate document. It carries no behaviour.

#include <ravo-orx/core/ORXRawValue.h>

namespace ravo::orx {

enum class ORXContractFacadeDisposition { deferredRequiresSeparateRFC };

template <>
struct ORXRawValueTable<ORXContractFacadeDisposition> {
  static constexpr std::array<std::pair<ORXContractFacadeDisposition, std::string_view>, 1> entries{{
      {ORXContractFacadeDisposition::deferredRequiresSeparateRFC, "DEFERRED_REQUIRES_SEPARATE_RFC"},
  }};
};

}  // namespace ravo::orx
