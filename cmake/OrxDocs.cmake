# `docs`: the API reference of the public headers (Doxygen), with docs/EMBEDDING.md as its main page.
# Any Doxygen warning fails the target. The headers' own `//` comments are their documentation: a
# filter shows Doxygen the comment lines directly above a declaration as `///` lines.
# Only for our own builds: a parent project may have a `docs` target of its own.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
find_package(Doxygen)
if(NOT DOXYGEN_FOUND)
  return()
endif()
set(DOXYGEN_PROJECT_NAME "Ravo ORX")
set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/docs/EMBEDDING.md)
set(DOXYGEN_FILE_PATTERNS *.h)
set(DOXYGEN_EXCLUDE_PATTERNS */tests/* */fuzz/* */engine/*)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_EXTRACT_STATIC YES)
set(DOXYGEN_BUILTIN_STL_SUPPORT YES)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_WARN_IF_UNDOCUMENTED NO)
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_MARKDOWN_SUPPORT YES)
set(DOXYGEN_AUTOLINK_SUPPORT NO)
set(DOXYGEN_INPUT_FILTER "sed -f ${CMAKE_CURRENT_LIST_DIR}/OrxDoxygenComments.sed")
doxygen_add_docs(docs
  ${PROJECT_SOURCE_DIR}/docs/EMBEDDING.md
  ${PROJECT_SOURCE_DIR}/core ${PROJECT_SOURCE_DIR}/host_contract ${PROJECT_SOURCE_DIR}/contracts
  ${PROJECT_SOURCE_DIR}/runtime ${PROJECT_SOURCE_DIR}/adapters
  ${PROJECT_BINARY_DIR}/generated/runtime/OrxVersion.h
  COMMENT "Building the API reference")
if(ORX_INSTALL)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/api OPTIONAL)
endif()
