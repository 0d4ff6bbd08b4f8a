# A floor is one folder built as one library. Its headers are reached through a link in the build tree, so that
# a lower floor can't name a header of an upper one: the include simply isn't found.
function(vesk_floor name folder)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp)
  set(view ${CMAKE_BINARY_DIR}/floors/${name})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${folder} ${view}/${folder} SYMBOLIC)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_compile_options(${name} PRIVATE ${VESK_WARNINGS})
    set(scope PUBLIC)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${view})
  target_link_libraries(${name} ${scope} ${ARGN})
endfunction()

# Rules calculate in doubles and hand the results to built-ins that take what the runner stores: no warning there.
function(vesk_rules name)
  get_target_property(type ${name} TYPE)
  if(NOT type STREQUAL "INTERFACE_LIBRARY")
    target_compile_options(${name} PRIVATE -Wno-conversion -Wno-float-conversion)
  endif()
endfunction()

# Links a library into a floor without showing its headers to the floors above.
function(vesk_uses name)
  get_target_property(type ${name} TYPE)
  if(NOT type STREQUAL "INTERFACE_LIBRARY")
    target_link_libraries(${name} PRIVATE ${ARGN})
  endif()
endfunction()
