# Warnings are errors everywhere; sanitizers apply to every target of the build tree.
add_compile_options(-Wall -Wextra -Wpedantic -Werror)
# g++ 12 reports false -Wrestrict and -Warray-bounds inside std::string concatenation once inlining
# reaches its memcpy (GCC bug 105651); they stay visible as warnings instead of failing the build.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-error=restrict -Wno-error=array-bounds)
endif()
if(ORX_SANITIZE)
  add_compile_options(-fsanitize=${ORX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ORX_SANITIZE})
  # g++ 12's flow analysis sees sanitizer-instrumented std::variant moves as uninitialised reads; the
  # plain build keeps this warning an error.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-error=maybe-uninitialized)
  endif()
endif()
