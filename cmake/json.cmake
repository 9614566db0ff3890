# kalim-nlohmann: nlohmann/json for the room that links it. Its headers are all that is needed, so a
# build for another machine takes them from this one, through a folder that holds nothing else of
# this machine's.
add_library(kalim-nlohmann INTERFACE)
if(KALIM_BUILD_NATIVE)
  find_package(nlohmann_json 3.11 REQUIRED)
  target_link_libraries(kalim-nlohmann INTERFACE nlohmann_json::nlohmann_json)
else()
  find_path(KALIM_JSON_FOLDER nlohmann/json.hpp PATHS /usr/include REQUIRED)
  set(json_folder ${PROJECT_BINARY_DIR}/include)
  file(MAKE_DIRECTORY ${json_folder})
  file(CREATE_LINK ${KALIM_JSON_FOLDER}/nlohmann ${json_folder}/nlohmann SYMBOLIC)
  target_include_directories(kalim-nlohmann SYSTEM INTERFACE ${json_folder})
  target_compile_definitions(kalim-nlohmann INTERFACE JSON_NOEXCEPTION JSON_NO_IO)
endif()
