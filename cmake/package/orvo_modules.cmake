# What every installed module needs, the product's own and those of others.

include(GNUInstallDirs)

# Below the prefix: where modules lie, and the manifests by which the runtime finds them.
set(ORVO_MODULES_FOLDER ${CMAKE_INSTALL_LIBDIR}/orvo)
set(ORVO_MANIFESTS_FOLDER ${CMAKE_INSTALL_DATADIR}/orvo/components)

# orvo_add_module(NAME source...): a shared library with the exports of a component module. A source
# defines this_module(), which lists its classes.
function(orvo_add_module name)
  get_property(sources GLOBAL PROPERTY ORVO_MODULE_SOURCES)
  add_library(${name} MODULE ${ARGN} ${sources}/exports.cpp)
  target_link_libraries(${name} PRIVATE Orvo::Module)
  set_target_properties(${name} PROPERTIES PREFIX "")
  set(exports ${sources}/exports.map)
  target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${exports})
endfunction()

# orvo_install_module(TARGET [COMPONENT name]): installs a module, and its manifest, in which the
# module's path is relative, so that the installed tree may be moved.
function(orvo_install_module target)
  cmake_parse_arguments(PARSE_ARGV 1 module "" "COMPONENT" "")
  if(NOT module_COMPONENT)
    set(module_COMPONENT modules)
  endif()
  install(TARGETS ${target} LIBRARY DESTINATION ${ORVO_MODULES_FOLDER}
          COMPONENT ${module_COMPONENT})
  file(RELATIVE_PATH module_path ${CMAKE_INSTALL_FULL_DATADIR}/orvo/components
                                 ${CMAKE_INSTALL_FULL_LIBDIR}/orvo)
  # The module registers itself, into a folder of its own; then its path is put right.
  install(CODE "
    set(folder \"${CMAKE_CURRENT_BINARY_DIR}/${target}.manifests\")
    set(destination \"${ORVO_MANIFESTS_FOLDER}\")
    file(REMOVE_RECURSE \"\${folder}\")
    file(MAKE_DIRECTORY \"\${folder}\")
    execute_process(
      COMMAND \"\${CMAKE_COMMAND}\" -E env \"ORVO_COMPONENTS=\${folder}\"
              \"$<TARGET_FILE:Orvo::register>\" \"$<TARGET_FILE:${target}>\"
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(GLOB manifest \"\${folder}/*.manifest\")
    file(READ \"\${manifest}\" text)
    string(REGEX REPLACE \"\\nmodule = [^\\n]*\"
           \"\\nmodule = ${module_path}/$<TARGET_FILE_NAME:${target}>\" text \"\${text}\")
    file(WRITE \"\${manifest}\" \"\${text}\")
    cmake_path(ABSOLUTE_PATH destination BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
    file(INSTALL \"\${manifest}\" DESTINATION \"\${destination}\")
  " COMPONENT ${module_COMPONENT})
endfunction()
