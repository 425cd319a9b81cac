# A folder of the application with QML in it: a static library of its C++ beside a QML module of its .qml files.

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Qml Quick Svg)

# marrowbox_qml_library(FOLDER [LINKS target...]): the library marrowboxApp<FOLDER>, included as Marrowbox/<FOLDER>/…,
# whose .qml files, also those in its Controls folder, are imported as Marrowbox.<FOLDER>. C++ types with QML_ELEMENT
# are part of it. Something in the library must name qml_register_types_Marrowbox_<FOLDER>(), or the linker drops it.
function(marrowbox_qml_library folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINKS")
  set(target marrowboxApp${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.h)
  file(GLOB qml CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} ${folder}/*.qml ${folder}/Controls/*.qml)
  file(GLOB symbols CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} ${folder}/*.svg ${folder}/Symbols/*.svg)
  foreach(file IN LISTS qml symbols)
    string(REGEX REPLACE "^${folder}/" "" alias ${file})
    set_source_files_properties(${file} PROPERTIES QT_RESOURCE_ALIAS ${alias})
  endforeach()
  if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/${folder}.qml) # the folder's own values, one object for all
    set_source_files_properties(${folder}/${folder}.qml PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
  endif()

  qt_add_library(${target} STATIC)
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  # Byte code made at build time starts faster; a source a file takes long to build, so they go through in a few pieces,
  # and a debug build reads the files as they are.
  set(cache NO_CACHEGEN)
  if(CMAKE_BUILD_TYPE STREQUAL "Release")
    set(cache)
    set_target_properties(${target} PROPERTIES QT_QMLCACHEGEN_ARGUMENTS --only-bytecode UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 16)
    set_source_files_properties(${sources} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
  qt_add_qml_module(${target}
    URI Marrowbox.${folder}
    VERSION 1.0
    RESOURCE_PREFIX /
    NO_PLUGIN
    ${cache}
    OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/Marrowbox/${folder}
    SOURCES ${sources}
    QML_FILES ${qml}
    RESOURCES ${symbols})
  # The registration of C++ types names each header by its file name alone.
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
  set(view ${CMAKE_BINARY_DIR}/include/App${folder}/Marrowbox)
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${folder} ${view}/${folder} SYMBOLIC)
  target_include_directories(${target} PUBLIC ${CMAKE_BINARY_DIR}/include/App${folder})
  target_link_libraries(${target} PUBLIC ${arg_LINKS} Qt6::Quick PRIVATE marrowboxBuildSettings)
  target_precompile_headers(${target} REUSE_FROM marrowboxPrecompiledQt)
endfunction()
