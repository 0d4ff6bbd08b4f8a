# Constants for the assets (spr_, bg_, snd_ …) come from the asset tables, so that names and indices stand once.
set(names ${CMAKE_BINARY_DIR}/generated/game/AssetNames.h)
set(tables ${CMAKE_SOURCE_DIR}/assets/sprites.tsv ${CMAKE_SOURCE_DIR}/assets/backgrounds.tsv
           ${CMAKE_SOURCE_DIR}/assets/sounds.tsv ${CMAKE_SOURCE_DIR}/assets/names.tsv)
add_custom_command(OUTPUT ${names}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/generated/game
  COMMAND awk -f ${CMAKE_SOURCE_DIR}/tools/asset_names.awk ${tables} > ${names}
  DEPENDS ${tables} ${CMAKE_SOURCE_DIR}/tools/asset_names.awk
  COMMENT "Asset names")
add_custom_target(asset_names DEPENDS ${names})
get_target_property(type game TYPE)
if(type STREQUAL "INTERFACE_LIBRARY")
  target_include_directories(game INTERFACE ${CMAKE_BINARY_DIR}/generated)
else()
  target_include_directories(game PUBLIC ${CMAKE_BINARY_DIR}/generated)
endif()
add_dependencies(game asset_names)
