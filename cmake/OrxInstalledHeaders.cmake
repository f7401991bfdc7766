# The headers an application gets, by their repository paths: every library's include root, less the
# runtime's internal headers (the engine boundary and the decider stay behind OrxPolicyRuntime; the
# engine's own root is never installed).
set(ORX_INCLUDE_ROOTS core/include host_contract/include contracts/support/include contracts/definitions/include
  contracts/actions/include contracts/scenarios/include contracts/services/include runtime/include
  capi/include adapters/include)
set(ORX_INTERNAL_HEADERS LoadedModule.h OrxArtifactFiles.h OrxEmittedRecordRules.h OrxEvidence.h OrxPolicyDecider.h
  OrxDecisionRecord.h OrxDecisionLogFormat.h OrxDecisionLogWriter.h OrxDecisionLogVerifier.h)

function(orx_installed_headers out)
  set(headers)
  foreach(root IN LISTS ORX_INCLUDE_ROOTS)
    file(GLOB_RECURSE found RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${root}/*.h)
    list(APPEND headers ${found})
  endforeach()
  foreach(internal IN LISTS ORX_INTERNAL_HEADERS)
    list(FILTER headers EXCLUDE REGEX "/${internal}$")
  endforeach()
  set(${out} ${headers} PARENT_SCOPE)
endfunction()
