#ifndef ORX_WASM2C_SYMBOLS_H
#define ORX_WASM2C_SYMBOLS_H
/* The wasm2c runtime and the translated modules' import are compiled into our libraries under names of
 * our own, so an application that links its own wasm2c runtime (or another module importing
 * output.emit) never has its symbols bound to ours, nor ours to its. Every file that declares or uses
 * them sees this header first: it is force-included into the runtime's and the translated modules' C
 * sources and included first by the C++ files that bind them. */

#define wasm_rt_allocate_externref_table ravo_orx_wasm_rt_allocate_externref_table
#define wasm_rt_allocate_funcref_table ravo_orx_wasm_rt_allocate_funcref_table
#define wasm_rt_allocate_memory ravo_orx_wasm_rt_allocate_memory
#define wasm_rt_exception ravo_orx_wasm_rt_exception
#define wasm_rt_exception_size ravo_orx_wasm_rt_exception_size
#define wasm_rt_exception_tag ravo_orx_wasm_rt_exception_tag
#define wasm_rt_free ravo_orx_wasm_rt_free
#define wasm_rt_free_externref_table ravo_orx_wasm_rt_free_externref_table
#define wasm_rt_free_funcref_table ravo_orx_wasm_rt_free_funcref_table
#define wasm_rt_free_memory ravo_orx_wasm_rt_free_memory
#define wasm_rt_get_unwind_target ravo_orx_wasm_rt_get_unwind_target
#define wasm_rt_grow_externref_table ravo_orx_wasm_rt_grow_externref_table
#define wasm_rt_grow_funcref_table ravo_orx_wasm_rt_grow_funcref_table
#define wasm_rt_grow_memory ravo_orx_wasm_rt_grow_memory
#define wasm_rt_init ravo_orx_wasm_rt_init
#define wasm_rt_is_initialized ravo_orx_wasm_rt_is_initialized
#define wasm_rt_jmp_buf ravo_orx_wasm_rt_jmp_buf
#define wasm_rt_load_exception ravo_orx_wasm_rt_load_exception
#define wasm_rt_register_func_type ravo_orx_wasm_rt_register_func_type
#define wasm_rt_register_tag ravo_orx_wasm_rt_register_tag
#define wasm_rt_set_unwind_target ravo_orx_wasm_rt_set_unwind_target
#define wasm_rt_strerror ravo_orx_wasm_rt_strerror
#define wasm_rt_throw ravo_orx_wasm_rt_throw
#define wasm_rt_trap ravo_orx_wasm_rt_trap
#define Z_outputZ_emit ravo_orx_Z_outputZ_emit

#endif
