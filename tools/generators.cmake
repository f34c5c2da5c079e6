# The generators and the writers they share: built for the machine that builds, whether the
# library is built for it or for another system.
add_library(zel_code_table_writer STATIC ${CMAKE_CURRENT_LIST_DIR}/code_table_writer.cpp)
target_include_directories(zel_code_table_writer PUBLIC ${CMAKE_CURRENT_LIST_DIR})
set_target_properties(zel_code_table_writer PROPERTIES POSITION_INDEPENDENT_CODE ON)

add_library(zel_resource_writer STATIC ${CMAKE_CURRENT_LIST_DIR}/resource_file_writer.cpp
  ${CMAKE_CURRENT_LIST_DIR}/resource_source.cpp)
target_include_directories(zel_resource_writer PUBLIC ${CMAKE_CURRENT_LIST_DIR}
  PRIVATE ${CMAKE_CURRENT_LIST_DIR}/../src)
set_target_properties(zel_resource_writer PROPERTIES POSITION_INDEPENDENT_CODE ON)

# ZEL_WRITERS_ONLY: the writers serve the test suites, so a build for another system makes them
# for that system, and the generators for this one apart (host/).
if(NOT ZEL_WRITERS_ONLY)
  add_executable(gen_code_tables ${CMAKE_CURRENT_LIST_DIR}/gen_code_tables.cpp)
  target_link_libraries(gen_code_tables PRIVATE zel_code_table_writer)
  add_executable(gen_kchar_tables ${CMAKE_CURRENT_LIST_DIR}/gen_kchar_tables.cpp)
  target_link_libraries(gen_kchar_tables PRIVATE zel_code_table_writer)
  add_executable(resource_compiler ${CMAKE_CURRENT_LIST_DIR}/resource_compiler.cpp)
  target_link_libraries(resource_compiler PRIVATE zel_resource_writer)
endif()
