# Layers: parts of a library that may call only the layers below them.

# Compiles `SOURCES`, given from the project's root, as objects for any library. They are compiled in
# a tree of links that holds their own folder and, of the rest of the project, the folders and headers
# in `SEES`: a call in another direction finds no header, however it spells its include.
function(qal_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 layer "" "" "SOURCES;SEES")
  set(view ${PROJECT_BINARY_DIR}/layers/${name})
  foreach(source ${layer_SOURCES})
    get_filename_component(folder ${source} DIRECTORY)
    list(APPEND layer_SEES ${source} ${folder})
    list(APPEND sources ${view}/${source})
  endforeach()
  list(REMOVE_DUPLICATES layer_SEES)
  file(REMOVE_RECURSE ${view})
  foreach(seen ${layer_SEES})
    set(files ${seen})
    if(IS_DIRECTORY ${PROJECT_SOURCE_DIR}/${seen})
      file(GLOB files CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/${seen}/*.h)
    endif()
    foreach(file ${files})
      get_filename_component(folder ${view}/${file} DIRECTORY)
      file(MAKE_DIRECTORY ${folder})
      file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${file} ${view}/${file} SYMBOLIC)
    endforeach()
  endforeach()

  # Lines are counted in the sources themselves, not in links to them.
  if(CMAKE_CXX_FLAGS MATCHES "--coverage")
    list(TRANSFORM layer_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/ OUTPUT_VARIABLE sources)
  endif()
  add_library(${name} OBJECT ${sources})
  target_link_libraries(${name} PRIVATE qal_build_options)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                                           VISIBILITY_INLINES_HIDDEN ON)
endfunction()
