# Files compiled into the store library as byte arrays, so that both programs carry them.
# Each entry of QF_RESOURCES is "symbol=path"; the array is named kResource_<symbol>.
set(QF_RESOURCES "")
file(GLOB QF_RESOURCE_FILES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*)
foreach(res IN LISTS QF_RESOURCE_FILES)
  get_filename_component(name ${res} NAME)
  string(MAKE_C_IDENTIFIER ${name} symbol)
  set(out ${PROJECT_BINARY_DIR}/resources/${symbol}.cpp)
  add_custom_command(
    OUTPUT ${out}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${res} -DOUTPUT=${out} -DSYMBOL=${symbol}
            -P ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake
    DEPENDS ${res} ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake
    VERBATIM)
  target_sources(qf_store PRIVATE ${out})
endforeach()
