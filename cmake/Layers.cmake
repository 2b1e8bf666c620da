# One static library per source folder of the core.
#
# A static library alone does not stop a lower layer from calling a higher one: the programs link
# every layer, so the call resolves. Each layer therefore also gets a small check program that
# links the whole of its library (every object, used or not) with only the layers below it; a
# call upwards then leaves an undefined symbol and the build fails there.

set(QF_LAYER_CHECK_MAIN ${CMAKE_CURRENT_LIST_DIR}/LayerCheckMain.cpp)

function(qf_layer name folder)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "DEPENDS;PRIVATE_DEPENDS")
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_DEPENDS} PRIVATE ${arg_PRIVATE_DEPENDS})
  qf_warnings(${name})

  add_executable(${name}_check ${QF_LAYER_CHECK_MAIN})
  target_link_libraries(${name}_check PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,${name}>")
endfunction()
