#include "runtime/tests/MeteredTestModules.h"

#include <stdexcept>

#include <ravo-orx/engine/wasm2c/Wasm2cSymbols.h>

#include "metered_bulk.h"
#include "metered_loop.h"
#include "metered_recursion.h"
#include "metered_references.h"
#include "unmetered_loop.h"
#include <ravo-orx/engine/PrecompiledModule.h>

#include "metered_bulk_budgets.h"
#include "metered_loop_budgets.h"
#include "metered_recursion_budgets.h"
#include "metered_references_budgets.h"

namespace ravo::orx {

using namespace internal;

namespace {

template <class Module>
PrecompiledTestModule bind() {
  auto module = std::make_unique<Module>();
  auto startError = module->startError();
  return {std::move(module), std::move(startError)};
}

using Loop = PrecompiledModule<Z_metered_loop_instance_t, Z_metered_loop_instantiate, Z_metered_loop_free,
                               Z_metered_loopZ_decide, metered_loop_budgets>;
using Recursion =
    PrecompiledModule<Z_metered_recursion_instance_t, Z_metered_recursion_instantiate, Z_metered_recursion_free,
                      Z_metered_recursionZ_decide, metered_recursion_budgets>;
using Bulk = PrecompiledModule<Z_metered_bulk_instance_t, Z_metered_bulk_instantiate, Z_metered_bulk_free,
                               Z_metered_bulkZ_decide, metered_bulk_budgets>;
using References =
    PrecompiledModule<Z_metered_references_instance_t, Z_metered_references_instantiate, Z_metered_references_free,
                      Z_metered_referencesZ_decide, metered_references_budgets>;
using UnmeteredLoop = PrecompiledModule<Z_unmetered_loop_instance_t, Z_unmetered_loop_instantiate,
                                        Z_unmetered_loop_free, Z_unmetered_loopZ_decide>;

}  // namespace

PrecompiledTestModule precompiledTestModule(std::string_view name) {
  static const bool initialized = [] {
    wasm_rt_init();
    Z_metered_loop_init_module();
    Z_metered_recursion_init_module();
    Z_metered_bulk_init_module();
    Z_metered_references_init_module();
    Z_unmetered_loop_init_module();
    return true;
  }();
  (void)initialized;
  if (name == "metered_loop") return bind<Loop>();
  if (name == "metered_recursion") return bind<Recursion>();
  if (name == "metered_bulk") return bind<Bulk>();
  if (name == "metered_references") return bind<References>();
  if (name == "unmetered_loop") return bind<UnmeteredLoop>();
  throw std::invalid_argument("no metered test module " + std::string(name));
}

}  // namespace ravo::orx
