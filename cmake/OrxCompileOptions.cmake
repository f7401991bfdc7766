# Warnings are errors everywhere; sanitizers apply to every target of the build tree.
add_compile_options(-Wall -Wextra -Wpedantic -Werror)
if(ORX_SANITIZE)
  add_compile_options(-fsanitize=${ORX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ORX_SANITIZE})
endif()
