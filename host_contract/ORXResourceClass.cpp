#include "host_contract/ORXResourceClass.h"

namespace {
constexpr const char* kTypeID = "orx.host::ResourceClass";
}

ORXResourceClass::ORXResourceClass(std::int32_t discriminant)
    : value_(discriminant, kTypeID, ORXClosedEnumContext::host(), kTypeID, false) {}
