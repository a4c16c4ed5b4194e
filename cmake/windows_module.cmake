# What a module needs on Windows: its exports, a run time of its own, and resources.

find_program(ORVO_WIDL NAMES widl x86_64-w64-mingw32-widl REQUIRED)

# orvo_windows_module(NAME SOURCES source... [IDL file...]): the module NAME. Each IDL is the text of a
# type library that it carries, the first one being that of its classes; a library may use those named
# behind it.
function(orvo_windows_module name)
  cmake_parse_arguments(PARSE_ARGV 1 module "" "" "SOURCES;IDL")
  add_library(${name} MODULE ${module_SOURCES} ${PROJECT_SOURCE_DIR}/platform/module/exports.cpp)
  target_link_libraries(${name} PRIVATE Orvo::Module)
  set_target_properties(${name} PROPERTIES PREFIX "")
  set(type_library_lines "")
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
  set(libraries "")
  set(idls ${module_IDL})
  list(REVERSE idls)
  foreach(idl ${idls})
    cmake_path(GET idl STEM library_name)
    cmake_path(GET idl PARENT_PATH folder)
    set(library ${CMAKE_CURRENT_BINARY_DIR}/${library_name}.tlb)
    add_custom_command(OUTPUT ${library}
      COMMAND ${ORVO_WIDL} -t -I ${folder} -L ${CMAKE_CURRENT_BINARY_DIR} -o ${library} ${idl}
      DEPENDS ${idl} ${libraries} VERBATIM)
    list(PREPEND libraries ${library})
  endforeach()
  set(number 0)
  foreach(library ${libraries})
    math(EXPR number "${number} + 1")
    string(APPEND type_library_lines "${number} TYPELIB \"${library}\"\n")
  endforeach()
  set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${libraries}")
  configure_file(${PROJECT_SOURCE_DIR}/platform/module/resources.rc.in ${resources} @ONLY)
  target_sources(${name} PRIVATE ${resources} ${PROJECT_SOURCE_DIR}/platform/module/exports.def)
  target_link_options(${name} PRIVATE -static)
endfunction()
