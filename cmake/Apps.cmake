# The programs. A folder under apps/ with sources is one program of that name.
function(vesk_app name)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/apps/${name}/*.cpp)
  if(sources)
    add_executable(${name} ${sources})
    target_compile_options(${name} PRIVATE ${VESK_WARNINGS})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${ARGN} CLI11::CLI11)
  endif()
endfunction()

vesk_app(vesk-studio pack)
vesk_app(vesk-pack game pack)

# The container is compiled from the sources in assets/ and from the game's own tables, by the tool just built.
# Another build's container serves as well: a sanitized tool would compile all sounds at a crawl.
set(VESK_CONTAINER "" CACHE FILEPATH "A container to embed instead of compiling one")
if(VESK_CONTAINER)
  set(container ${VESK_CONTAINER})
else()
  file(GLOB_RECURSE asset_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/assets/*)
  set(container ${CMAKE_BINARY_DIR}/data.win)
  add_custom_command(OUTPUT ${container}
    COMMAND vesk-pack build --assets ${CMAKE_SOURCE_DIR}/assets --cache ${CMAKE_BINARY_DIR}/asset-cache -o ${container}
    DEPENDS vesk-pack ${asset_sources}
    COMMENT "Container")
endif()
add_custom_target(container ALL DEPENDS ${container})

# Embedded as writable data: the loader resolves references in place.
get_filename_component(container_folder ${container} DIRECTORY)
set(blob ${CMAKE_SOURCE_DIR}/apps/container/blob.S)
set_source_files_properties(${blob} PROPERTIES OBJECT_DEPENDS ${container} COMPILE_OPTIONS "-I${container_folder}")
add_library(container_blob OBJECT ${blob})
add_dependencies(container_blob container)

vesk_app(vesk-editor game)
vesk_app(vesk-sim sim)
vesk_app(vesk-level sim)
foreach(app vesk-editor vesk-sim vesk-level)
  if(TARGET ${app} AND TARGET container_blob)
    target_link_libraries(${app} PRIVATE container_blob)
  endif()
endforeach()
