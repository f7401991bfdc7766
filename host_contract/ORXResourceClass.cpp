#include <ravo-orx/host_contract/ORXResourceClass.h>

namespace ravo::orx {

namespace {
constexpr const char* kTypeID = "orx.host::ResourceClass";
}

ORXResourceClass::ORXResourceClass(std::int32_t discriminant)
    : value_(discriminant, kTypeID, ORXClosedEnumContext::host(), kTypeID, false) {}

}  // namespace ravo::orx
