# Warnings are errors in our own builds (ORX_WARNINGS_AS_ERRORS); sanitizers apply to every target of
# the build tree. Directory-scoped, so a parent project's targets keep their own flags.
add_compile_options(-Wall -Wextra -Wpedantic)
if(ORX_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()
# -O2 for C++ Release builds, not CMake's default -O3: g++ 12 at -O3 reports many more false
# -Wrestrict/-Warray-bounds warnings inside std::string concatenation (GCC bug 105651). The last -O on
# the command line wins; trees whose cached flags already say -O2 are left as they are.
if(NOT CMAKE_CXX_FLAGS_RELEASE MATCHES "-O2")
  add_compile_options($<$<AND:$<CONFIG:Release>,$<COMPILE_LANGUAGE:CXX>>:-O2>)
endif()
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
