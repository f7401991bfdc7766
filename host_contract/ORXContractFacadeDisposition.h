#pragma once
// Marks contract facades whose design is deferred to a separate document. It carries no behaviour.

#include "core/ORXRawValue.h"

enum class ORXContractFacadeDisposition { deferredRequiresSeparateRFC };

template <>
struct ORXRawValueTable<ORXContractFacadeDisposition> {
  static constexpr std::array<std::pair<ORXContractFacadeDisposition, std::string_view>, 1> entries{{
      {ORXContractFacadeDisposition::deferredRequiresSeparateRFC, "DEFERRED_REQUIRES_SEPARATE_RFC"},
  }};
};
