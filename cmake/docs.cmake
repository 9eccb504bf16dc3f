# The API reference: Doxygen renders the public headers into build/docs/html. A public class or
# function without documentation fails the target.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
  set(HOSTKIT_DOCS_DIR ${PROJECT_BINARY_DIR}/docs)
  configure_file(docs/Doxyfile.in ${HOSTKIT_DOCS_DIR}/Doxyfile @ONLY)
  add_custom_target(docs
    COMMAND Doxygen::doxygen ${HOSTKIT_DOCS_DIR}/Doxyfile
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    COMMENT "Rendering the API reference into ${HOSTKIT_DOCS_DIR}/html"
    VERBATIM)
endif()
